#pragma once

#include "server/contacts/MemberDirectory.h"

namespace tavren::server {

class SqliteDatabase;

// The member search over the embedded SQLite database: accounts, with their profiles where
// they have one. Name prefixes use the name index; e-mail addresses have an index of their own.
class SqliteMemberDirectory : public MemberDirectory {
  public:
    explicit SqliteMemberDirectory(SqliteDatabase& db) : db_(db) {}

    std::vector<MemberCard> byNamePrefix(std::string_view prefix, std::size_t limit) override;
    std::vector<MemberCard> byEmail(std::string_view address, std::size_t limit) override;
    std::vector<MemberCard> byProfileText(std::string_view text, std::size_t limit) override;

  private:
    std::vector<MemberCard> cards(const std::string& condition, std::string_view argument,
                                  std::size_t limit);

    SqliteDatabase& db_;
};

}  // namespace tavren::server
