#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "server/contacts/Mail.h"

namespace tavren::server {

// Where inboxes live. An interface like the other stores, so a shared database can take the
// embedded one's place; implementations throw StorageError when the storage itself fails.
class MailStore {
  public:
    virtual ~MailStore() = default;

    // The member's mails, newest first.
    virtual std::vector<StoredMail> inboxOf(std::int64_t ownerId) = 0;
    virtual std::size_t countOf(std::int64_t ownerId) = 0;
    // Keeps a copy of the mail (its id is not read) in each of these inboxes, all or none.
    virtual void deliver(const StoredMail& mail, const std::vector<std::int64_t>& ownerIds) = 0;
    // Removes the member's mails with these ids; ids of other members' mails change nothing.
    // Returns how many were removed.
    virtual std::size_t remove(std::int64_t ownerId, const std::vector<std::int64_t>& mailIds) = 0;
};

}  // namespace tavren::server
