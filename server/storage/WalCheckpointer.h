#pragma once

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <thread>

struct sqlite3;

namespace tavren::server {

// Moves the write-ahead log into the database file on a thread of its own, with a connection of
// its own, once per interval. This is where SQLite waits for the disk: with the journal in WAL
// mode and synchronous=NORMAL a commit only appends to the log (no fsync), and the fsyncs happen
// at checkpoints. Doing them here means a slow disk never stalls the network thread, and the
// interval bounds what a power cut can take: the commits since the last checkpoint. A killed
// process loses nothing that was committed, since the log is in the system's cache already.
//
// Once this runs, the main connection stops checkpointing by itself
// (SqliteDatabase::leaveCheckpointsToOthers).
class WalCheckpointer {
  public:
    WalCheckpointer(const std::filesystem::path& file, std::chrono::milliseconds interval);
    ~WalCheckpointer();
    WalCheckpointer(const WalCheckpointer&) = delete;
    WalCheckpointer& operator=(const WalCheckpointer&) = delete;

  private:
    void run();

    sqlite3* db_ = nullptr;
    std::chrono::milliseconds interval_;
    std::mutex mutex_;
    std::condition_variable wake_;
    bool stopping_ = false;
    std::thread thread_;
};

}  // namespace tavren::server
