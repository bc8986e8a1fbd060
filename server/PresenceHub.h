#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "core/protocol/CodePair.h"
#include "server/ClientLink.h"

namespace tavren::server {

// Who is online, and fan-out to them. Sessions register here once logged in; rooms, buddies and
// presence notices reach other members only through this interface, so that a hub spanning
// several servers can take the local one's place.
class PresenceHub {
  public:
    virtual ~PresenceHub() = default;

    // Marks the member online with this link. Returns the link that held the name before (another
    // login of the same account), which the caller ends; nullptr when there was none. Names are
    // compared without regard to case.
    virtual std::shared_ptr<ClientLink> join(const std::string& name,
                                             std::shared_ptr<ClientLink> link) = 0;
    // Marks the member offline, but only if `link` is still the one registered for the name (a
    // replaced session leaving must not log out its successor).
    virtual void leave(const std::string& name, const ClientLink* link) = 0;
    virtual std::size_t onlineCount() const = 0;
    // Sends one frame to every member online.
    virtual void broadcast(protocol::CodePair code, std::string_view payload) = 0;
};

}  // namespace tavren::server
