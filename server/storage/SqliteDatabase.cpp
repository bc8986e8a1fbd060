#include "server/storage/SqliteDatabase.h"

#include <sqlite3.h>

#include <array>
#include <system_error>

#include "server/storage/SqliteStatement.h"
#include "server/storage/StorageError.h"

namespace tavren::server {

namespace {

// Each step brings the schema from version i to i + 1; a new table is a new step at the end,
// never an edit of an old one, so every existing database upgrades the same way.
constexpr std::array kSchemaSteps = {
    R"(CREATE TABLE accounts (
           id INTEGER PRIMARY KEY,
           name TEXT NOT NULL UNIQUE COLLATE NOCASE,
           password_hash TEXT NOT NULL,
           email TEXT NOT NULL DEFAULT '',
           staff_level INTEGER NOT NULL DEFAULT 0 CHECK (staff_level BETWEEN 0 AND 3),
           score INTEGER NOT NULL DEFAULT 0,
           created_at INTEGER NOT NULL,
           nickname_format TEXT NOT NULL DEFAULT ''
       ))",
};

}  // namespace

SqliteDatabase::SqliteDatabase(const std::filesystem::path& file) {
    std::error_code ignored;
    if (file.has_parent_path()) {
        std::filesystem::create_directories(file.parent_path(), ignored);
    }
    if (sqlite3_open_v2(file.c_str(), &db_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr) !=
        SQLITE_OK) {
        const std::string reason = db_ ? sqlite3_errmsg(db_) : "out of memory";
        sqlite3_close(db_);
        db_ = nullptr;
        throw StorageError("cannot open database " + file.string() + ": " + reason);
    }
    try {
        sqlite3_busy_timeout(db_, 5000);
        execute("PRAGMA journal_mode=WAL");
        execute("PRAGMA foreign_keys=ON");
        migrate();
    } catch (...) {
        sqlite3_close(db_);
        db_ = nullptr;
        throw;
    }
}

SqliteDatabase::~SqliteDatabase() {
    sqlite3_close(db_);
}

void SqliteDatabase::execute(const std::string& sql) {
    char* message = nullptr;
    if (sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, &message) != SQLITE_OK) {
        const std::string reason = message ? message : lastError();
        sqlite3_free(message);
        throw StorageError("database error: " + reason);
    }
}

std::string SqliteDatabase::lastError() const {
    return sqlite3_errmsg(db_);
}

void SqliteDatabase::migrate() {
    SqliteStatement readVersion(*this, "PRAGMA user_version");
    readVersion.step();
    const auto current = static_cast<std::size_t>(readVersion.columnInt64(0));
    if (current > kSchemaSteps.size()) {
        throw StorageError("the database was written by a newer server (schema version " +
                           std::to_string(current) + ")");
    }
    for (std::size_t step = current; step < kSchemaSteps.size(); ++step) {
        execute("BEGIN IMMEDIATE");
        try {
            execute(kSchemaSteps[step]);
            execute("PRAGMA user_version=" + std::to_string(step + 1));
            execute("COMMIT");
        } catch (...) {
            sqlite3_exec(db_, "ROLLBACK", nullptr, nullptr, nullptr);
            throw;
        }
    }
}

}  // namespace tavren::server
