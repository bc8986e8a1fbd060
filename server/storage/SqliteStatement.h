#pragma once

#include <cstdint>
#include <string>
#include <string_view>

struct sqlite3_stmt;

namespace tavren::server {

class SqliteDatabase;

// A prepared statement; parameters are numbered from 1 and columns from 0, as in SQLite.
// Every failure throws StorageError.
class SqliteStatement {
  public:
    SqliteStatement(SqliteDatabase& db, const std::string& sql);
    ~SqliteStatement();
    SqliteStatement(const SqliteStatement&) = delete;
    SqliteStatement& operator=(const SqliteStatement&) = delete;

    SqliteStatement& bind(int index, std::string_view text);
    SqliteStatement& bind(int index, std::int64_t number);
    SqliteStatement& bindNull(int index);

    // Makes the statement ready to run again, with new parameters: preparing once and running
    // many times is much cheaper than preparing every time.
    void reset();

    // True while a row is available; false when the statement is done.
    bool step();
    // Runs a statement that returns no rows; returns false when it broke a uniqueness rule.
    bool execute();

    std::string columnText(int column) const;
    std::int64_t columnInt64(int column) const;

  private:
    SqliteDatabase& db_;
    sqlite3_stmt* statement_ = nullptr;
};

}  // namespace tavren::server
