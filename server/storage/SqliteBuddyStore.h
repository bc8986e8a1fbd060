#pragma once

#include "server/contacts/BuddyStore.h"

namespace tavren::server {

class SqliteDatabase;

// Buddy lists in the embedded SQLite database: one row per entry, in the list's order, naming
// the buddy by account id, so that the name always reads back as its account spells it.
class SqliteBuddyStore : public BuddyStore {
  public:
    explicit SqliteBuddyStore(SqliteDatabase& db) : db_(db) {}

    std::vector<Buddy> listOf(std::int64_t ownerId) override;
    void replace(std::int64_t ownerId, const std::vector<Buddy>& buddies) override;
    void lookUp(std::vector<Buddy>& buddies) override;

  private:
    SqliteDatabase& db_;
};

}  // namespace tavren::server
