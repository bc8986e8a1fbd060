#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tavren::server {

// Where profile pages live, one per account at most. An interface like the other stores;
// implementations throw StorageError when the storage itself fails.
class ProfileStore {
  public:
    virtual ~ProfileStore() = default;

    // The member's own page, or nothing when the member has not written one.
    virtual std::optional<std::string> pageOf(std::int64_t accountId) = 0;
    // Replaces the page. `link` is the page's first web address (empty when it has none); the
    // member search shows it.
    virtual void save(std::int64_t accountId, const std::string& page, const std::string& link) = 0;
    // The member has no page of their own any more.
    virtual void remove(std::int64_t accountId) = 0;
};

}  // namespace tavren::server
