#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tavren::server {

// Invitations waiting to be used: an invitation lets the invited member into the channel once,
// past its password, for as long as the invited member stays logged in. Kept in memory only; a
// member holds at most the latest few, so that nobody can make the server keep invitations
// without bound.
class ChannelInvitations {
  public:
    static constexpr std::size_t kMaxPerMember = 20;

    struct Invitation {
        std::string channelKey;  // lower-case channel name
        std::string inviter;     // spelled as the inviter's account
        std::int64_t inviterId = 0;
    };

    void add(std::string_view invitee, std::uint64_t inviteeSession, Invitation invitation);
    // The invitation of this login of the member to that channel, if any. Kept until used.
    const Invitation* find(std::string_view invitee, std::uint64_t inviteeSession,
                           std::string_view channelKey) const;
    std::optional<Invitation> take(std::string_view invitee, std::uint64_t inviteeSession,
                                   std::string_view channelKey);
    // The member's session is over: its invitations go with it.
    void forget(std::string_view member, std::uint64_t sessionId);

  private:
    struct Held {
        std::uint64_t sessionId = 0;
        std::vector<Invitation> invitations;  // oldest first
    };
    std::unordered_map<std::string, Held> held_;  // by lower-case invitee name
};

}  // namespace tavren::server
