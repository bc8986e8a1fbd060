#include "server/rooms/ChannelRequests.h"

#include "core/protocol/Catalogue.h"
#include "core/protocol/Fields.h"
#include "server/accounts/AccountRules.h"
#include "server/accounts/AccountStore.h"
#include "server/base/AsciiText.h"
#include "server/base/Log.h"
#include "server/base/Replies.h"
#include "server/rooms/ChannelInvitations.h"
#include "server/rooms/ChannelRules.h"
#include "server/rooms/OnlineMembers.h"
#include "server/session/Member.h"

namespace tavren::server {

namespace in = protocol::client_to_server;
namespace out = protocol::server_to_client;
using protocol::FieldAt;
using protocol::SplitFields;

std::string ChannelRequests::directoryPayload(const std::vector<RoomService::Listed>& channels) {
    std::vector<std::vector<std::string>> records;
    records.reserve(channels.size());
    for (const RoomService::Listed& listed : channels) {
        records.push_back({listed.channel.name, std::to_string(listed.members),
                           listed.channel.topic,
                           std::string(protocol::TruthText(listed.channel.official)),
                           std::string(protocol::TruthText(!listed.channel.passwordHash.empty()))});
    }
    return protocol::JoinRecords(records);
}

std::vector<protocol::CodePair> ChannelRequests::requests() const {
    return {in::kAskChannelDirectory, in::kInviteToRoom, in::kCreateRoom};
}

asio::awaitable<void> ChannelRequests::handle(Member& member, protocol::CodePair code,
                                              std::string payload) {
    if (code == in::kAskChannelDirectory) {
        if (takeLine(member)) {
            member.link.send(out::kChannelDirectory,
                             directoryPayload(rooms_.directory(kDirectoryLimit)));
        }
    } else if (code == in::kInviteToRoom) {
        invite(member, payload);
    } else if (code == in::kCreateRoom) {
        create(member, payload);
    }
    co_return;
}

bool ChannelRequests::takeLine(Member& member) {
    if (member.lines.take(LineBucket::Clock::now())) {
        return true;
    }
    member.link.send(replies::kNotice,
                     "You are sending requests too fast. Wait a moment, then try again.");
    return false;
}

void ChannelRequests::invite(Member& member, const std::string& payload) {
    const auto fields = SplitFields(payload, protocol::kListSeparator, 2);
    const std::string name(AsciiText::trimBlanks(FieldAt(fields, 0)));
    const std::string_view channelName = AsciiText::trimBlanks(FieldAt(fields, 1));
    auto notice = [&](const std::string& text) { member.link.send(replies::kNotice, text); };
    const ActiveChannel* channel = rooms_.channelOf(member, channelName);
    if (channel == nullptr) {
        notice("You can invite members only to a channel you are in.");
        return;
    }
    if (name.empty()) {
        notice("Whom? Give the name of the member to invite.");
        return;
    }
    if (AsciiText::equalNoCase(name, member.name())) {
        notice("You cannot invite yourself.");
        return;
    }
    Member* invited = online_.find(name);
    if (invited == nullptr) {
        std::optional<Account> account;
        if (AccountRules::checkName(name).empty()) {
            account = accounts_.findByName(name);
        }
        notice(account ? account->name + " is not online; invitations reach members who are."
                       : "There is no member called " + ChannelRules::echo(name) + ".");
        return;
    }
    if (channel->members.contains(AsciiText::lower(invited->name()))) {
        notice(invited->name() + " is in " + channel->channel.name + " already.");
        return;
    }
    if (!takeLine(member)) {
        return;
    }
    invitations_.add(invited->name(), invited->sessionId,
                     {AsciiText::lower(channel->channel.name), member.name(), member.account.id});
    invited->link.send(out::kRoomInvitation,
                       "Invite: " + member.name() + ";" + channel->channel.name);
    Log::info(member.name() + " invited " + invited->name() + " to " +
              Log::quoted(channel->channel.name));
}

void ChannelRequests::create(Member& member, const std::string& payload) {
    const auto fields = SplitFields(payload, protocol::kFieldSeparator, 3);
    rooms_.create(member, FieldAt(fields, 0), FieldAt(fields, 1), FieldAt(fields, 2));
}

void ChannelRequests::memberLeft(Member& member) {
    invitations_.forget(member.name(), member.sessionId);
}

}  // namespace tavren::server
