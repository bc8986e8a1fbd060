#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <utility>

#include "server/accounts/Account.h"
#include "server/net/ClientLink.h"
#include "server/session/LineBucket.h"

namespace tavren::server {

// A logged-in member as the features see it: the account as it stands (a feature that changes it
// updates it here too), the link that reaches this member alone, what tells this login apart
// from a later login of the same account, and the lines the member may still send in a burst
// (shared by every feature that relays lines). Owned by the session; features keep names and
// session ids, never the Member itself.
struct Member {
    Member(Account loggedIn, ClientLink& memberLink, std::uint64_t id,
           std::shared_ptr<const std::atomic<bool>> goneFlag, LineBucket lineBucket)
        : account(std::move(loggedIn)),
          link(memberLink),
          sessionId(id),
          gone(std::move(goneFlag)),
          lines(lineBucket) {}
    Member(const Member&) = delete;
    Member& operator=(const Member&) = delete;

    const std::string& name() const { return account.name; }

    Account account;
    ClientLink& link;
    const std::uint64_t sessionId;
    // Set once the session is over, so that queued work for it (a password check) is skipped.
    const std::shared_ptr<const std::atomic<bool>> gone;
    LineBucket lines;
};

}  // namespace tavren::server
