#pragma once

#include "server/accounts/AccountStore.h"

namespace tavren::server {

class SqliteDatabase;

// Accounts in the embedded SQLite database. Uniqueness of names without regard to case is the
// database's own rule (NOCASE on ASCII names), so two racing sign-ups cannot both win.
class SqliteAccountStore : public AccountStore {
  public:
    explicit SqliteAccountStore(SqliteDatabase& db) : db_(db) {}

    std::optional<Account> findByName(std::string_view name) override;
    bool create(Account& account) override;
    void setPasswordHash(std::int64_t accountId, const std::string& passwordHash) override;
    void setEmail(std::int64_t accountId, const std::string& email) override;
    void setNicknameFormat(std::int64_t accountId, const std::string& format) override;

  private:
    void setText(const char* sql, std::int64_t accountId, const std::string& value);

    SqliteDatabase& db_;
};

}  // namespace tavren::server
