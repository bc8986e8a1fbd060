#include "server/storage/SqliteMemberDirectory.h"

#include "server/storage/SqliteDatabase.h"
#include "server/storage/SqliteStatement.h"

namespace tavren::server {

namespace {

// "_" may be part of a name and "%" of a page: both are wildcards to LIKE unless escaped.
std::string likePattern(std::string_view text, bool anywhere) {
    std::string pattern = anywhere ? "%" : "";
    for (const char c : text) {
        if (c == '%' || c == '_' || c == '\\') {
            pattern += '\\';
        }
        pattern += c;
    }
    pattern += '%';
    return pattern;
}

}  // namespace

std::vector<MemberCard> SqliteMemberDirectory::byNamePrefix(std::string_view prefix,
                                                            std::size_t limit) {
    // LIKE ignores the case of ASCII letters, as names are compared everywhere else.
    return cards("accounts.name LIKE ?1 ESCAPE '\\'", likePattern(prefix, false), limit);
}

std::vector<MemberCard> SqliteMemberDirectory::byEmail(std::string_view address,
                                                       std::size_t limit) {
    return cards("accounts.email = ?1 COLLATE NOCASE AND accounts.email <> ''", address, limit);
}

std::vector<MemberCard> SqliteMemberDirectory::byProfileText(std::string_view text,
                                                             std::size_t limit) {
    return cards("profiles.page LIKE ?1 ESCAPE '\\'", likePattern(text, true), limit);
}

std::vector<MemberCard> SqliteMemberDirectory::cards(const std::string& condition,
                                                     std::string_view argument, std::size_t limit) {
    SqliteStatement query(
        db_,
        "SELECT accounts.name, accounts.created_at, profiles.account_id IS NOT NULL,"
        " COALESCE(profiles.link, '') FROM accounts"
        " LEFT JOIN profiles ON profiles.account_id = accounts.id WHERE " +
            condition + " ORDER BY accounts.name LIMIT ?2");
    query.bind(1, argument).bind(2, static_cast<std::int64_t>(limit));
    std::vector<MemberCard> found;
    while (query.step()) {
        found.push_back({query.columnText(0), query.columnInt64(1), query.columnInt64(2) != 0,
                         query.columnText(3)});
    }
    return found;
}

}  // namespace tavren::server
