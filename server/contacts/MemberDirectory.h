#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tavren::server {

// What the member search may tell of a member: nothing private (no password hash, no e-mail
// address), only what the member's name, profile and account date already show.
struct MemberCard {
    std::string name;
    std::int64_t createdAt = 0;  // seconds since the Unix epoch
    bool hasProfile = false;
    std::string link;  // the first web address of the member's profile, or empty
};

// The member directory the search reads. An interface like the other stores; implementations
// throw StorageError when the storage itself fails. Every query answers at most `limit` cards,
// ordered by name without regard to case.
class MemberDirectory {
  public:
    virtual ~MemberDirectory() = default;

    // Names that start with `prefix`, without regard to case.
    virtual std::vector<MemberCard> byNamePrefix(std::string_view prefix, std::size_t limit) = 0;
    // The member whose e-mail address is exactly `address` (letter case ignored): a whole
    // address, never a part of one, so that nobody can collect addresses by trying prefixes.
    virtual std::vector<MemberCard> byEmail(std::string_view address, std::size_t limit) = 0;
    // Members whose profile page contains `text`, without regard to case.
    virtual std::vector<MemberCard> byProfileText(std::string_view text, std::size_t limit) = 0;
};

}  // namespace tavren::server
