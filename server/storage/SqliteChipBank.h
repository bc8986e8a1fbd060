#pragma once

#include "server/holdem/ChipBank.h"

namespace tavren::server {

class SqliteDatabase;

// The banks are the accounts' scores; stakes are rows of holdem_stakes.
class SqliteChipBank : public ChipBank {
  public:
    explicit SqliteChipBank(SqliteDatabase& db) : db_(db) {}

    std::optional<std::int64_t> balance(std::string_view name) override;
    void grantUpTo(std::string_view name, std::int64_t chips) override;
    bool buyIn(std::string_view name, std::string_view table, std::int64_t chips) override;
    void setStakes(std::string_view table,
                   const std::vector<std::pair<std::string, std::int64_t>>& stakes) override;
    void cashOut(std::string_view name, std::string_view table, std::int64_t chips) override;
    void returnAllStakes() override;

  private:
    SqliteDatabase& db_;
};

}  // namespace tavren::server
