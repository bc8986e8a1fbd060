#pragma once

#include <filesystem>
#include <functional>
#include <string>

struct sqlite3;

namespace tavren::server {

// One open SQLite database in write-ahead-log mode, so readers never wait for the writer. Opening
// creates the file and its folder when missing and brings the schema up to date. Not shared
// between threads: the server uses it from its network thread only.
class SqliteDatabase {
  public:
    explicit SqliteDatabase(const std::filesystem::path& file);
    ~SqliteDatabase();
    SqliteDatabase(const SqliteDatabase&) = delete;
    SqliteDatabase& operator=(const SqliteDatabase&) = delete;

    // Runs statements that return no rows; throws StorageError on failure.
    void execute(const std::string& sql);
    // Runs `work` as one transaction: all of it is kept, or none of it when it throws.
    void inTransaction(const std::function<void()>& work);
    sqlite3* handle() const { return db_; }
    // From now on this connection commits without ever checkpointing (no fsync on its thread);
    // a WalCheckpointer does that instead.
    void leaveCheckpointsToOthers();
    // The database's own message for the last failure.
    std::string lastError() const;

  private:
    void migrate();

    sqlite3* db_ = nullptr;
};

}  // namespace tavren::server
