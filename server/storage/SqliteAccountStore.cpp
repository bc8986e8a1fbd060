#include "server/storage/SqliteAccountStore.h"

#include <chrono>

#include "server/storage/SqliteDatabase.h"
#include "server/storage/SqliteStatement.h"

namespace tavren::server {

std::optional<Account> SqliteAccountStore::findByName(std::string_view name) {
    SqliteStatement query(db_,
                          "SELECT id, name, password_hash, email, staff_level, score, created_at,"
                          " nickname_format FROM accounts WHERE name = ?1");
    query.bind(1, name);
    if (!query.step()) {
        return std::nullopt;
    }
    Account account;
    account.id = query.columnInt64(0);
    account.name = query.columnText(1);
    account.passwordHash = query.columnText(2);
    account.email = query.columnText(3);
    account.staffLevel = static_cast<int>(query.columnInt64(4));
    account.score = query.columnInt64(5);
    account.createdAt = query.columnInt64(6);
    account.nicknameFormat = query.columnText(7);
    return account;
}

bool SqliteAccountStore::create(Account& account) {
    account.createdAt = std::chrono::duration_cast<std::chrono::seconds>(
                            std::chrono::system_clock::now().time_since_epoch())
                            .count();
    SqliteStatement insert(db_,
                           "INSERT INTO accounts (name, password_hash, email, staff_level, score,"
                           " created_at, nickname_format) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7)");
    insert.bind(1, account.name)
        .bind(2, account.passwordHash)
        .bind(3, account.email)
        .bind(4, std::int64_t{account.staffLevel})
        .bind(5, account.score)
        .bind(6, account.createdAt)
        .bind(7, account.nicknameFormat);
    if (!insert.execute()) {
        return false;
    }
    SqliteStatement lastId(db_, "SELECT last_insert_rowid()");
    lastId.step();
    account.id = lastId.columnInt64(0);
    return true;
}

void SqliteAccountStore::setPasswordHash(std::int64_t accountId, const std::string& passwordHash) {
    setText("UPDATE accounts SET password_hash = ?2 WHERE id = ?1", accountId, passwordHash);
}

void SqliteAccountStore::setEmail(std::int64_t accountId, const std::string& email) {
    setText("UPDATE accounts SET email = ?2 WHERE id = ?1", accountId, email);
}

void SqliteAccountStore::setNicknameFormat(std::int64_t accountId, const std::string& format) {
    setText("UPDATE accounts SET nickname_format = ?2 WHERE id = ?1", accountId, format);
}

void SqliteAccountStore::setText(const char* sql, std::int64_t accountId,
                                 const std::string& value) {
    SqliteStatement update(db_, sql);
    update.bind(1, accountId).bind(2, value);
    update.execute();
}

}  // namespace tavren::server
