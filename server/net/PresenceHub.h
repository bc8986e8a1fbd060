#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "core/protocol/CodePair.h"
#include "server/net/ClientLink.h"

namespace tavren::server {

// Who is online, and fan-out to them. Sessions register here once logged in; rooms, buddies and
// presence notices reach other members only through this interface ("send this to these
// members"), so that a hub spanning several servers can take the local one's place. Names are
// compared without regard to case everywhere.
class PresenceHub {
  public:
    virtual ~PresenceHub() = default;

    // Marks the member online with this link. Returns the link that held the name before (another
    // login of the same account), which the caller ends; nullptr when there was none.
    virtual std::shared_ptr<ClientLink> join(const std::string& name,
                                             std::shared_ptr<ClientLink> link) = 0;
    // Marks the member offline, but only if `link` is still the one registered for the name (a
    // replaced session leaving must not log out its successor).
    virtual void leave(const std::string& name, const ClientLink* link) = 0;
    virtual std::size_t onlineCount() const = 0;
    virtual bool isOnline(std::string_view name) const = 0;
    // Sends one frame to every member online.
    virtual void broadcast(protocol::CodePair code, std::string_view payload) = 0;
    // Sends one frame to each of these members who is online, in the order given; names of
    // members who are not online are skipped.
    virtual void sendTo(std::span<const std::string> names, protocol::CodePair code,
                        std::string_view payload) = 0;
};

}  // namespace tavren::server
