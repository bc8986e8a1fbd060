#pragma once

#include "server/contacts/ProfileStore.h"

namespace tavren::server {

class SqliteDatabase;

// Profile pages in the embedded SQLite database, one row per member who has written one.
class SqliteProfileStore : public ProfileStore {
  public:
    explicit SqliteProfileStore(SqliteDatabase& db) : db_(db) {}

    std::optional<std::string> pageOf(std::int64_t accountId) override;
    void save(std::int64_t accountId, const std::string& page, const std::string& link) override;
    void remove(std::int64_t accountId) override;

  private:
    SqliteDatabase& db_;
};

}  // namespace tavren::server
