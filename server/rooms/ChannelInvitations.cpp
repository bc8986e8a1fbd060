#include "server/rooms/ChannelInvitations.h"

#include <algorithm>

#include "server/base/AsciiText.h"

namespace tavren::server {

void ChannelInvitations::add(std::string_view invitee, std::uint64_t inviteeSession,
                             Invitation invitation) {
    Held& held = held_[AsciiText::lower(invitee)];
    if (held.sessionId != inviteeSession) {
        held = Held{inviteeSession, {}};
    }
    // A second invitation to the same channel replaces the first: the latest inviter counts.
    std::erase_if(held.invitations,
                  [&](const Invitation& old) { return old.channelKey == invitation.channelKey; });
    held.invitations.push_back(std::move(invitation));
    if (held.invitations.size() > kMaxPerMember) {
        held.invitations.erase(held.invitations.begin());
    }
}

const ChannelInvitations::Invitation* ChannelInvitations::find(std::string_view invitee,
                                                               std::uint64_t inviteeSession,
                                                               std::string_view channelKey) const {
    const auto found = held_.find(AsciiText::lower(invitee));
    if (found == held_.end() || found->second.sessionId != inviteeSession) {
        return nullptr;
    }
    for (const Invitation& invitation : found->second.invitations) {
        if (invitation.channelKey == channelKey) {
            return &invitation;
        }
    }
    return nullptr;
}

std::optional<ChannelInvitations::Invitation> ChannelInvitations::take(
    std::string_view invitee, std::uint64_t inviteeSession, std::string_view channelKey) {
    const Invitation* invitation = find(invitee, inviteeSession, channelKey);
    if (invitation == nullptr) {
        return std::nullopt;
    }
    Invitation taken = *invitation;
    auto& invitations = held_[AsciiText::lower(invitee)].invitations;
    std::erase_if(invitations,
                  [&](const Invitation& each) { return each.channelKey == channelKey; });
    return taken;
}

void ChannelInvitations::forget(std::string_view member, std::uint64_t sessionId) {
    const auto found = held_.find(AsciiText::lower(member));
    if (found != held_.end() && found->second.sessionId == sessionId) {
        held_.erase(found);
    }
}

}  // namespace tavren::server
