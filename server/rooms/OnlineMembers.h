#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "server/session/FeatureHandler.h"

namespace tavren::server {

// The members logged in on this server, reachable by name: moderation needs a member's own link
// (to end a suspended member's session) and address (for a subnet ban), which the hub does not
// give out. A feature that answers no requests; it only hears of arrivals and departures. A new
// login of an account takes the name over; the replaced session leaving later changes nothing.
class OnlineMembers : public FeatureHandler {
  public:
    std::vector<protocol::CodePair> requests() const override { return {}; }
    asio::awaitable<void> handle(Member&, protocol::CodePair, std::string) override { co_return; }
    void memberArrived(Member& member) override;
    void memberLeft(Member& member) override;

    // The member logged in under that name (any case), or nullptr.
    Member* find(std::string_view name) const;
    void forEach(const std::function<void(Member&)>& visit) const;

  private:
    std::unordered_map<std::string, Member*> members_;  // by lower-case name
};

}  // namespace tavren::server
