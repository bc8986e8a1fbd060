#include "server/storage/SqliteStatement.h"

#include <sqlite3.h>

#include "server/storage/SqliteDatabase.h"
#include "server/storage/StorageError.h"

namespace tavren::server {

SqliteStatement::SqliteStatement(SqliteDatabase& db, const std::string& sql) : db_(db) {
    if (sqlite3_prepare_v2(db.handle(), sql.c_str(), static_cast<int>(sql.size()), &statement_,
                           nullptr) != SQLITE_OK) {
        throw StorageError("cannot prepare statement: " + db.lastError());
    }
}

SqliteStatement::~SqliteStatement() {
    sqlite3_finalize(statement_);
}

SqliteStatement& SqliteStatement::bind(int index, std::string_view text) {
    if (sqlite3_bind_text(statement_, index, text.data(), static_cast<int>(text.size()),
                          SQLITE_TRANSIENT) != SQLITE_OK) {
        throw StorageError("cannot bind parameter: " + db_.lastError());
    }
    return *this;
}

SqliteStatement& SqliteStatement::bind(int index, std::int64_t number) {
    if (sqlite3_bind_int64(statement_, index, number) != SQLITE_OK) {
        throw StorageError("cannot bind parameter: " + db_.lastError());
    }
    return *this;
}

SqliteStatement& SqliteStatement::bindNull(int index) {
    if (sqlite3_bind_null(statement_, index) != SQLITE_OK) {
        throw StorageError("cannot bind parameter: " + db_.lastError());
    }
    return *this;
}

void SqliteStatement::reset() {
    // The result of reset repeats the last step's error, which that step has reported already.
    sqlite3_reset(statement_);
    sqlite3_clear_bindings(statement_);
}

bool SqliteStatement::step() {
    const int status = sqlite3_step(statement_);
    if (status == SQLITE_ROW) {
        return true;
    }
    if (status == SQLITE_DONE) {
        return false;
    }
    throw StorageError("database error: " + db_.lastError());
}

bool SqliteStatement::execute() {
    const int status = sqlite3_step(statement_);
    if (status == SQLITE_DONE || status == SQLITE_ROW) {
        return true;
    }
    if (sqlite3_extended_errcode(db_.handle()) == SQLITE_CONSTRAINT_UNIQUE) {
        return false;
    }
    throw StorageError("database error: " + db_.lastError());
}

std::string SqliteStatement::columnText(int column) const {
    const auto* text = sqlite3_column_text(statement_, column);
    const int size = sqlite3_column_bytes(statement_, column);
    return text ? std::string(reinterpret_cast<const char*>(text), static_cast<std::size_t>(size))
                : std::string{};
}

std::int64_t SqliteStatement::columnInt64(int column) const {
    return sqlite3_column_int64(statement_, column);
}

}  // namespace tavren::server
