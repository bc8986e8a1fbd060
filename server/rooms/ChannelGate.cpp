#include "server/rooms/ChannelGate.h"

#include <chrono>

#include "server/base/AsciiText.h"
#include "server/rooms/Channel.h"
#include "server/rooms/ChannelInvitations.h"
#include "server/rooms/ChannelPassword.h"
#include "server/rooms/Sanctions.h"
#include "server/session/Member.h"

namespace tavren::server {

namespace {

std::int64_t unixNow() {
    return std::chrono::duration_cast<std::chrono::seconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

}  // namespace

std::string ChannelGate::refusalEverywhere(const Member& member) {
    if (sanctions_.store().accountBan(member.account.id)) {
        return "you are banned from every channel of this server.";
    }
    return {};
}

ChannelGate::Verdict ChannelGate::mayEnter(Member& member, const Channel& channel,
                                           std::string_view password) {
    using Kind = Verdict::Kind;
    if (sanctions_.store().channelBan(channel.id, member.account.id)) {
        return {Kind::kRefuse, "you are banned from this channel."};
    }
    if (channel.passwordHash.empty()) {
        return {};
    }
    const bool host = !channel.official && channel.hostId == member.account.id;
    const bool invited = invitations_.find(member.name(), member.sessionId,
                                           AsciiText::lower(channel.name)) != nullptr;
    if (host || member.account.staffLevel > 0 || invited) {
        return {};
    }
    if (password.empty()) {
        return {Kind::kAskPassword, "This channel asks for a password."};
    }
    if (!member.lines.take(LineBucket::Clock::now())) {
        return {Kind::kAskPassword,
                "You are trying passwords too fast. Wait a moment, then try again."};
    }
    if (!ChannelPassword::verify(channel.passwordHash, password)) {
        return {Kind::kAskPassword, "The password was wrong. Try again."};
    }
    return {};
}

void ChannelGate::entered(const Member& member, const Channel& channel) {
    const auto invitation =
        invitations_.take(member.name(), member.sessionId, AsciiText::lower(channel.name));
    if (invitation && invitation->inviterId != member.account.id) {
        sanctions_.store().addReferral(member.account.id, invitation->inviterId, channel.name,
                                       unixNow());
    }
}

}  // namespace tavren::server
