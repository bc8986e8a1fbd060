#pragma once

#include "server/contacts/MailStore.h"

namespace tavren::server {

class SqliteDatabase;

// Inboxes in the embedded SQLite database: one row per mail and addressee, so that deleting
// one member's copy leaves the others' alone.
class SqliteMailStore : public MailStore {
  public:
    explicit SqliteMailStore(SqliteDatabase& db) : db_(db) {}

    std::vector<StoredMail> inboxOf(std::int64_t ownerId) override;
    std::size_t countOf(std::int64_t ownerId) override;
    void deliver(const StoredMail& mail, const std::vector<std::int64_t>& ownerIds) override;
    std::size_t remove(std::int64_t ownerId, const std::vector<std::int64_t>& mailIds) override;

  private:
    SqliteDatabase& db_;
};

}  // namespace tavren::server
