#include "server/rooms/RoomService.h"

#include <algorithm>
#include <chrono>
#include <span>

#include "core/protocol/Catalogue.h"
#include "server/base/AsciiText.h"
#include "server/base/Log.h"
#include "server/base/Replies.h"
#include "server/net/PresenceHub.h"
#include "server/rooms/ChannelGate.h"
#include "server/rooms/ChannelPassword.h"
#include "server/rooms/ChannelRules.h"
#include "server/rooms/ChannelStore.h"
#include "server/rooms/MemberRank.h"
#include "server/rooms/MembershipListener.h"
#include "server/session/Member.h"
#include "server/session/SenderField.h"

namespace tavren::server {

namespace out = protocol::server_to_client;

namespace {

constexpr std::chrono::hours kSweepInterval{1};
// Below this many members a channel's list goes out on every change.
constexpr std::size_t kListThrottleFrom = 64;
constexpr std::string_view kServerSender = "**ChanHost";

// How long a channel of `members` members waits between two member lists: the bytes of one list
// grow with the members, and so does the number of receivers.
std::chrono::steady_clock::duration listWindow(std::size_t members) {
    if (members < kListThrottleFrom) {
        return {};
    }
    return std::chrono::microseconds(static_cast<std::int64_t>(members * members));
}

}  // namespace

RoomService::RoomService(ChannelStore& store, PresenceHub& hub, MembershipListener& membership,
                         ChannelGate& gate, const RoomLimits& limits,
                         asio::any_io_executor executor)
    : store_(store),
      hub_(hub),
      membership_(membership),
      gate_(gate),
      limits_(limits),
      executor_(std::move(executor)),
      sweepTimer_(executor_) {}

std::int64_t RoomService::unixNow() {
    return std::chrono::duration_cast<std::chrono::seconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

void RoomService::start() {
    store_.setOfficial(limits_.officialChannels, unixNow());
    removeExpired();
    scheduleSweep();
}

void RoomService::stop() {
    stopped_ = true;
    sweepTimer_.cancel();
    for (auto& [key, channel] : active_) {
        if (channel->listTimer) {
            channel->listTimer->cancel();
        }
    }
}

void RoomService::scheduleSweep() {
    sweepTimer_.expires_after(kSweepInterval);
    sweepTimer_.async_wait([this](const asio::error_code& error) {
        if (error || stopped_) {
            return;
        }
        try {
            removeExpired();
        } catch (const std::exception& failure) {
            Log::warn(std::string("clearing expired channels failed: ") + failure.what());
        }
        scheduleSweep();
    });
}

void RoomService::removeExpired() {
    const std::int64_t now = unixNow();
    // Channels in use are not expiring, however long ago they were emptied last; saying so in
    // the store keeps them safe even if the server stops without their members leaving.
    for (const auto& [key, channel] : active_) {
        if (!channel->channel.official) {
            store_.setLastUsed(channel->channel.id, now);
        }
    }
    const std::int64_t cutoff = now - std::int64_t{limits_.channelExpiryDays} * 24 * 3600;
    std::size_t removed = 0;
    for (const Channel& channel : store_.unusedSince(cutoff)) {
        if (!active_.contains(AsciiText::lower(channel.name))) {
            store_.remove(channel.id);
            ++removed;
        }
    }
    if (removed > 0) {
        Log::info("removed " + std::to_string(removed) + " expired channels");
    }
}

RoomService::MemberChannels& RoomService::ownChannels(const Member& member) {
    const std::string memberKey = AsciiText::lower(member.name());
    MemberChannels& mine = memberChannels_[memberKey];
    if (mine.sessionId != member.sessionId) {
        // Whatever an earlier login of this account left behind is gone with that login.
        for (const std::string& stale : std::exchange(mine.keys, {})) {
            removeMember(stale, memberKey);
        }
        mine.sessionId = member.sessionId;
    }
    return mine;
}

std::string RoomService::tooManyChannels(const Member& member) {
    const std::size_t count = ownChannels(member).keys.size();
    if (count < limits_.maxChannelsPerMember) {
        return {};
    }
    return "you are in " + std::to_string(count) + " channels already; leave one first.";
}

void RoomService::join(Member& member, std::string_view requestedName, std::string_view password) {
    const std::string_view name = AsciiText::trimBlanks(requestedName);
    const std::string key = AsciiText::lower(name);
    ownChannels(member);
    if (ActiveChannel* channel = channelOf(member, name)) {
        answerJoin(member, *channel, true);
        return;
    }
    for (const std::string& why : {gate_.refusalEverywhere(member), tooManyChannels(member)}) {
        if (!why.empty()) {
            refuseJoin(member, name, why);
            return;
        }
    }
    ActiveChannel* channel = activate(member, name, key);
    if (channel == nullptr) {
        return;
    }
    if (channel->members.size() >= limits_.maxChannelMembers) {
        refuseJoin(member, name, "the channel is full.");
        return;
    }
    const ChannelGate::Verdict verdict = gate_.mayEnter(member, channel->channel, password);
    switch (verdict.kind) {
        case ChannelGate::Verdict::Kind::kRefuse:
            refuseJoin(member, name, verdict.why);
            return;
        case ChannelGate::Verdict::Kind::kAskPassword:
            // The client shows its password prompt with the sentence, and joins again with it.
            member.link.send(out::kJoinedRoom, channel->channel.name + ":" + verdict.why);
            releaseIfEmpty(key);
            return;
        case ChannelGate::Verdict::Kind::kEnter:
            break;
    }
    const std::string memberKey = AsciiText::lower(member.name());
    channel->members[memberKey] = ChannelMember{member.name(), member.account.id,
                                                member.account.staffLevel, member.sessionId};
    channel->names.push_back(member.name());
    auto& keys = memberChannels_[memberKey].keys;
    keys.push_back(key);
    answerJoin(member, *channel, false);
    if (keys.size() == 1) {
        tellFirstChannel(member.name(), member.sessionId, keys);
    }
    gate_.entered(member, channel->channel);
}

void RoomService::create(Member& member, std::string_view requestedName, std::string_view password,
                         std::string_view topic) {
    const std::string_view name = AsciiText::trimBlanks(requestedName);
    const std::string cleanTopic(AsciiText::trimBlanks(topic));
    std::string why = gate_.refusalEverywhere(member);
    if (why.empty()) {
        why = ChannelRules::checkName(name);
    }
    if (why.empty() && store_.findByName(name)) {
        why = "a channel of that name exists already.";
    }
    if (why.empty() && store_.countHostedBy(member.account.id) >= limits_.maxHostedChannels) {
        why = "you host " + std::to_string(limits_.maxHostedChannels) +
              " channels already, the most one member may.";
    }
    for (const std::string& problem : {tooManyChannels(member), ChannelPassword::check(password),
                                       ChannelRules::checkTopic(cleanTopic, limits_.maxTopic)}) {
        if (why.empty()) {
            why = problem;
        }
    }
    Channel created;
    if (why.empty()) {
        created.name = std::string(name);
        created.topic = cleanTopic;
        created.hostId = member.account.id;
        created.createdAt = created.lastUsedAt = unixNow();
        if (!store_.create(created)) {
            why = "a channel of that name exists already.";
        }
    }
    if (!why.empty()) {
        Log::info(member.name() + " cannot create " + Log::quoted(name) + ": " + why);
        member.link.send(replies::kNotice,
                         "You cannot create \"" + ChannelRules::echo(name) + "\": " + why);
        return;
    }
    if (!password.empty()) {
        store_.setPasswordHash(created.id, ChannelPassword::hash(password));
    }
    Log::info(member.name() + " created the channel " + Log::quoted(created.name) +
              (password.empty() ? "" : " with a password"));
    join(member, created.name);
    if (ActiveChannel* channel = channelOf(member, created.name)) {
        tellMember(member, *channel,
                   password.empty() ? "You created this channel and host it."
                                    : "You created this channel and host it. Others join it "
                                      "with its password or an invitation.");
    }
}

void RoomService::tellFirstChannel(const std::string& memberName, std::uint64_t sessionId,
                                   const std::vector<std::string>& keys) {
    std::string first;
    if (!keys.empty()) {
        if (const auto found = active_.find(keys.front()); found != active_.end()) {
            first = found->second->channel.name;
        }
    }
    membership_.firstChannelChanged(memberName, sessionId, first);
}

ActiveChannel* RoomService::activate(Member& member, std::string_view name,
                                     const std::string& key) {
    if (const auto found = active_.find(key); found != active_.end()) {
        return found->second.get();
    }
    std::optional<Channel> stored;
    if (!name.empty() && name.size() <= ChannelRules::kMaxOfficialNameLength) {
        stored = store_.findByName(name);
    }
    if (!stored) {
        if (const std::string problem = ChannelRules::checkName(name); !problem.empty()) {
            refuseJoin(member, name, problem);
            return nullptr;
        }
        if (store_.countHostedBy(member.account.id) >= limits_.maxHostedChannels) {
            refuseJoin(member, name,
                       "you host " + std::to_string(limits_.maxHostedChannels) +
                           " channels already, the most one member may.");
            return nullptr;
        }
        Channel created;
        created.name = std::string(name);
        created.hostId = member.account.id;
        created.createdAt = created.lastUsedAt = unixNow();
        if (store_.create(created)) {
            Log::info(member.name() + " created the channel " + Log::quoted(created.name));
            stored = std::move(created);
        } else {
            stored = store_.findByName(name);  // taken meanwhile by another server
            if (!stored) {
                return nullptr;
            }
        }
    }
    auto channel = std::make_unique<ActiveChannel>();
    channel->channel = std::move(*stored);
    return active_.emplace(key, std::move(channel)).first->second.get();
}

void RoomService::refuseJoin(Member& member, std::string_view name, std::string_view why) {
    Log::info(member.name() + " cannot join " + Log::quoted(name) + ": " + std::string(why));
    member.link.send(replies::kNotice,
                     "You cannot join \"" + ChannelRules::echo(name) + "\": " + std::string(why));
    releaseIfEmpty(AsciiText::lower(AsciiText::trimBlanks(name)));
}

void RoomService::releaseIfEmpty(const std::string& key) {
    // A channel activated for a join but not joined goes back to the store.
    if (const auto found = active_.find(key);
        found != active_.end() && found->second->members.empty()) {
        active_.erase(found);
    }
}

void RoomService::answerJoin(Member& member, ActiveChannel& channel, bool nothingChanged) {
    member.link.send(out::kJoinedRoom, channel.channel.name);
    if (nothingChanged) {
        // A client that lost track gets its tab back; nobody else hears of it.
        member.link.send(out::kMemberList, listPayload(channel));
    } else {
        membersChanged(channel, &member);
    }
    if (!channel.channel.topic.empty()) {
        tellMember(member, channel, "Topic: " + channel.channel.topic);
    }
}

void RoomService::leave(Member& member, std::string_view requestedName) {
    const ActiveChannel* channel = channelOf(member, AsciiText::trimBlanks(requestedName));
    if (channel == nullptr) {
        return;  // not in it: nothing to do
    }
    const std::string key = AsciiText::lower(channel->channel.name);
    const std::string memberKey = AsciiText::lower(member.name());
    auto& keys = memberChannels_[memberKey].keys;
    const bool wasFirst = !keys.empty() && keys.front() == key;
    keys.erase(std::remove(keys.begin(), keys.end(), key), keys.end());
    removeMember(key, memberKey);
    if (wasFirst) {
        tellFirstChannel(member.name(), member.sessionId, keys);
    }
}

void RoomService::leaveAll(Member& member) {
    const std::string memberKey = AsciiText::lower(member.name());
    const auto mine = memberChannels_.find(memberKey);
    if (mine == memberChannels_.end() || mine->second.sessionId != member.sessionId) {
        return;  // a later login owns whatever is there
    }
    const std::vector<std::string> keys = std::move(mine->second.keys);
    memberChannels_.erase(mine);
    for (const std::string& key : keys) {
        removeMember(key, memberKey);
    }
    if (!keys.empty()) {
        tellFirstChannel(member.name(), member.sessionId, {});
    }
}

bool RoomService::remove(std::string_view memberName, ActiveChannel& channel,
                         std::string_view why) {
    const std::string memberKey = AsciiText::lower(memberName);
    const auto found = channel.members.find(memberKey);
    if (found == channel.members.end()) {
        return false;
    }
    const ChannelMember removed = found->second;
    const std::string key = AsciiText::lower(channel.channel.name);
    hub_.sendTo(std::span(&removed.name, 1), out::kRemovedFromRoom,
                channel.channel.name + ":" + std::string(why));
    bool wasFirst = false;
    const auto mine = memberChannels_.find(memberKey);
    if (mine != memberChannels_.end() && mine->second.sessionId == removed.sessionId) {
        auto& keys = mine->second.keys;
        wasFirst = !keys.empty() && keys.front() == key;
        keys.erase(std::remove(keys.begin(), keys.end(), key), keys.end());
    }
    // The channel itself goes when this was its last member.
    removeMember(key, memberKey);
    if (wasFirst) {
        tellFirstChannel(removed.name, removed.sessionId, mine->second.keys);
    }
    return true;
}

ActiveChannel* RoomService::active(std::string_view name) {
    const auto found = active_.find(AsciiText::lower(name));
    return found == active_.end() ? nullptr : found->second.get();
}

std::vector<RoomService::Listed> RoomService::directory(std::size_t limit) {
    std::vector<Listed> listed;
    listed.reserve(active_.size());
    for (const auto& [key, channel] : active_) {
        listed.push_back({channel->channel, channel->members.size()});
    }
    std::sort(listed.begin(), listed.end(), [](const Listed& a, const Listed& b) {
        if (a.members != b.members) {
            return a.members > b.members;
        }
        if (a.channel.official != b.channel.official) {
            return a.channel.official;
        }
        return AsciiText::lessNoCase(a.channel.name, b.channel.name);
    });
    if (listed.size() > limit) {
        listed.resize(limit);
        return listed;
    }
    // Then the empty ones, as the store orders them: official first, then by name.
    for (Channel& stored : store_.list(limit + active_.size())) {
        if (listed.size() >= limit) {
            break;
        }
        if (!active_.contains(AsciiText::lower(stored.name))) {
            listed.push_back({std::move(stored), 0});
        }
    }
    return listed;
}

void RoomService::removeMember(const std::string& channelKey, const std::string& memberKey) {
    const auto found = active_.find(channelKey);
    if (found == active_.end()) {
        return;
    }
    ActiveChannel& channel = *found->second;
    const auto member = channel.members.find(memberKey);
    if (member == channel.members.end()) {
        return;
    }
    const std::string name = member->second.name;
    channel.members.erase(member);
    if (const auto listed = std::find(channel.names.begin(), channel.names.end(), name);
        listed != channel.names.end()) {
        channel.names.erase(listed);
    }
    if (!channel.members.empty()) {
        membersChanged(channel, nullptr);
        return;
    }
    // Empty: back to the store, which counts the expiry time from now.
    if (!channel.channel.official) {
        store_.setLastUsed(channel.channel.id, unixNow());
    }
    if (channel.listTimer) {
        channel.listTimer->cancel();
    }
    active_.erase(found);
}

ActiveChannel* RoomService::channelOf(const Member& member, std::string_view name) {
    const auto found = active_.find(AsciiText::lower(name));
    if (found == active_.end()) {
        return nullptr;
    }
    const auto& members = found->second->members;
    const auto entry = members.find(AsciiText::lower(member.name()));
    return entry != members.end() && entry->second.sessionId == member.sessionId
               ? found->second.get()
               : nullptr;
}

void RoomService::membersChanged(ActiveChannel& channel, Member* joiner) {
    const auto now = std::chrono::steady_clock::now();
    const auto window = listWindow(channel.members.size());
    if (!channel.listPending && now - channel.listSentAt >= window) {
        sendListToAll(channel);
        return;
    }
    if (joiner != nullptr) {
        joiner->link.send(out::kMemberList, listPayload(channel));
    }
    if (channel.listPending) {
        return;  // the list that is due will carry this change too
    }
    channel.listPending = true;
    if (!channel.listTimer) {
        channel.listTimer = std::make_unique<asio::steady_timer>(executor_);
    }
    channel.listTimer->expires_at(channel.listSentAt + window);
    const std::string key = AsciiText::lower(channel.channel.name);
    const ActiveChannel* expected = &channel;
    channel.listTimer->async_wait([this, key, expected](const asio::error_code& error) {
        const auto found = active_.find(key);
        if (error || stopped_ || found == active_.end() || found->second.get() != expected) {
            return;
        }
        sendListToAll(*found->second);
    });
}

void RoomService::sendListToAll(ActiveChannel& channel) {
    channel.listPending = false;
    channel.listSentAt = std::chrono::steady_clock::now();
    hub_.sendTo(channel.names, out::kMemberList, listPayload(channel));
}

std::string RoomService::listPayload(const ActiveChannel& channel) const {
    std::vector<ListedMember> listed;
    listed.reserve(channel.members.size());
    const bool hosted = !channel.channel.official && channel.channel.hostId != 0;
    for (const auto& [key, member] : channel.members) {
        listed.push_back(
            {member.name,
             RankOf(member.staffLevel, hosted && member.accountId == channel.channel.hostId)});
    }
    return MemberListPayload(channel.channel.name, listed);
}

void RoomService::relay(const ActiveChannel& channel, const Member& sender, std::string_view text) {
    std::string payload = channel.channel.name;
    payload += ':';
    payload += SenderField(sender);
    payload += ':';
    payload += text;
    hub_.sendTo(channel.names, out::kChannelHostMessage, payload);
}

void RoomService::tellMember(const Member& member, const ActiveChannel& channel,
                             std::string_view text) {
    member.link.send(
        out::kChannelHostMessage,
        channel.channel.name + ":" + std::string(kServerSender) + ":" + std::string(text));
}

void RoomService::tellChannel(const ActiveChannel& channel, std::string_view text) {
    hub_.sendTo(channel.names, out::kChannelHostMessage,
                channel.channel.name + ":" + std::string(kServerSender) + ":" + std::string(text));
}

void RoomService::setTopic(ActiveChannel& channel, const std::string& topic) {
    store_.setTopic(channel.channel.id, topic);
    channel.channel.topic = topic;
}

std::vector<std::string> RoomService::channelsOf(std::string_view memberName) const {
    std::vector<std::string> names;
    const auto mine = memberChannels_.find(AsciiText::lower(memberName));
    if (mine == memberChannels_.end()) {
        return names;
    }
    for (const std::string& key : mine->second.keys) {
        if (const auto found = active_.find(key); found != active_.end()) {
            names.push_back(found->second->channel.name);
        }
    }
    return names;
}

std::size_t RoomService::channelCount() {
    return store_.count();
}

}  // namespace tavren::server
