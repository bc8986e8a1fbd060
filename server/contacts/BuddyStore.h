#pragma once

#include <cstdint>
#include <vector>

#include "server/contacts/Buddy.h"

namespace tavren::server {

// Where buddy lists live. An interface like the other stores, so a shared database can take the
// embedded one's place; implementations throw StorageError when the storage itself fails.
// A list refers to accounts, not to names: it always reads back in the accounts' own spelling.
class BuddyStore {
  public:
    virtual ~BuddyStore() = default;

    // The member's list in the order it was stored; empty when the member has none.
    virtual std::vector<Buddy> listOf(std::int64_t ownerId) = 0;
    // Replaces the member's whole list. Every buddy has its account id; the names are not read.
    virtual void replace(std::int64_t ownerId, const std::vector<Buddy>& buddies) = 0;
    // Fills in the account id and the account's spelling of every buddy whose name belongs to an
    // account (without regard to case); the others keep account id 0.
    virtual void lookUp(std::vector<Buddy>& buddies) = 0;
};

}  // namespace tavren::server
