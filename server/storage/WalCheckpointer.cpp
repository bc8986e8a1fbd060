#include "server/storage/WalCheckpointer.h"

#include <sqlite3.h>

#include "server/base/Log.h"
#include "server/storage/StorageError.h"

namespace tavren::server {

WalCheckpointer::WalCheckpointer(const std::filesystem::path& file,
                                 std::chrono::milliseconds interval)
    : interval_(interval) {
    if (sqlite3_open_v2(file.c_str(), &db_, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK) {
        const std::string reason = db_ ? sqlite3_errmsg(db_) : "out of memory";
        sqlite3_close(db_);
        throw StorageError("cannot open database " + file.string() + " for checkpoints: " + reason);
    }
    // A checkpoint waits for no writer; one that meets a busy database simply tries next time.
    sqlite3_busy_timeout(db_, 0);
    thread_ = std::thread([this] { run(); });
}

WalCheckpointer::~WalCheckpointer() {
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
    }
    wake_.notify_all();
    thread_.join();
    sqlite3_close(db_);
}

void WalCheckpointer::run() {
    std::unique_lock lock(mutex_);
    for (;;) {
        const bool stopping = wake_.wait_for(lock, interval_, [this] { return stopping_; });
        lock.unlock();
        // PASSIVE copies what no reader still needs and syncs the log and the database file; the
        // last one, at shutdown, empties the log.
        const int mode = stopping ? SQLITE_CHECKPOINT_TRUNCATE : SQLITE_CHECKPOINT_PASSIVE;
        const int status = sqlite3_wal_checkpoint_v2(db_, nullptr, mode, nullptr, nullptr);
        if (status != SQLITE_OK && status != SQLITE_BUSY) {
            Log::warn(std::string("database checkpoint failed: ") + sqlite3_errmsg(db_));
        }
        if (stopping) {
            return;
        }
        lock.lock();
    }
}

}  // namespace tavren::server
