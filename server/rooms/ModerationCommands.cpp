#include "server/rooms/ModerationCommands.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <vector>

#include "server/accounts/AccountRules.h"
#include "server/accounts/AccountStore.h"
#include "server/base/AsciiText.h"
#include "server/base/Log.h"
#include "server/base/Replies.h"
#include "server/rooms/AddressRange.h"
#include "server/rooms/ChannelRules.h"
#include "server/rooms/OnlineMembers.h"
#include "server/rooms/RoomService.h"
#include "server/rooms/Sanctions.h"
#include "server/session/Member.h"

namespace tavren::server {

namespace {

using Kind = RoomCommand::Kind;

std::int64_t unixNow() {
    return std::chrono::duration_cast<std::chrono::seconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

std::string dateOf(std::int64_t when) {
    const auto time = static_cast<std::time_t>(when);
    std::tm utc{};
    gmtime_r(&time, &utc);
    char text[16];
    const std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%d", &utc);
    return std::string(text, length);
}

// "by alice on 2026-01-31: reason"
std::string describe(const Sanction& sanction) {
    std::string text = "by " + sanction.by + " on " + dateOf(sanction.at);
    if (!sanction.reason.empty()) {
        text += ": " + sanction.reason;
    }
    return text;
}

std::string joinWithCommas(const std::vector<std::string>& parts) {
    std::string joined;
    for (const std::string& part : parts) {
        joined += (joined.empty() ? "" : ", ") + part;
    }
    return joined;
}

}  // namespace

void ModerationCommands::run(Kind kind, Member& member, ActiveChannel& channel,
                             const std::string& argument) {
    switch (kind) {
        case Kind::kKick:
            if (auto who = target(member, channel, argument, ModerationAction::kKick, "kick")) {
                kick(member, channel, *who);
            }
            return;
        case Kind::kChannelBan:
            if (auto who =
                    target(member, channel, argument, ModerationAction::kChannelBan, "chanban")) {
                channelBan(member, channel, *who);
            }
            return;
        case Kind::kBan:
            if (auto who =
                    target(member, channel, argument, ModerationAction::kAccountBan, "ban")) {
                accountBan(member, channel, *who);
            }
            return;
        case Kind::kSuspend:
            if (auto who =
                    target(member, channel, argument, ModerationAction::kSuspend, "suspend")) {
                suspend(member, channel, *who);
            }
            return;
        case Kind::kSubnetBan:
            if (auto who =
                    target(member, channel, argument, ModerationAction::kSubnetBan, "subban")) {
                subnetBan(member, channel, *who);
            }
            return;
        case Kind::kUnban:
            unban(member, channel, argument);
            return;
        case Kind::kUnsuspend:
            unsuspend(member, channel, argument);
            return;
        case Kind::kBanList:
            listBans(member, channel);
            return;
        case Kind::kReferral:
            referral(member, channel, argument);
            return;
        default:
            return;
    }
}

Standing ModerationCommands::standingOf(const Account& account, const ActiveChannel& channel,
                                        ModerationAction action) {
    // Hosting counts only where the action stays inside the channel.
    const bool inChannel = action == ModerationAction::kKick ||
                           action == ModerationAction::kChannelBan ||
                           action == ModerationAction::kListBans;
    const bool hosts = inChannel && !channel.channel.official && account.id != 0 &&
                       channel.channel.hostId == account.id;
    return Standing{account.staffLevel, hosts};
}

std::optional<Account> ModerationCommands::account(Member& member, ActiveChannel& channel,
                                                   const std::string& name, std::string_view word) {
    if (name.empty()) {
        rooms_.tellMember(member, channel,
                          "Whom? Type /" + std::string(word) + " and a member's name.");
        return std::nullopt;
    }
    std::optional<Account> found;
    // A name that breaks the rules cannot belong to any account; no need to look.
    if (AccountRules::checkName(name).empty()) {
        found = accounts_.findByName(name);
    }
    if (!found) {
        rooms_.tellMember(member, channel,
                          "There is no member called " + ChannelRules::echo(name) + ".");
    }
    return found;
}

std::optional<ModerationCommands::Target> ModerationCommands::target(Member& member,
                                                                     ActiveChannel& channel,
                                                                     const std::string& argument,
                                                                     ModerationAction action,
                                                                     std::string_view word) {
    if (!ModerationRights::may(action, standingOf(member.account, channel, action))) {
        rooms_.tellMember(member, channel, std::string(ModerationRights::refusal(action)));
        return std::nullopt;
    }
    // "NAME:REASON": the reason keeps any further ":".
    const std::size_t colon = argument.find(':');
    const std::string name(AsciiText::trimBlanks(std::string_view(argument).substr(0, colon)));
    std::string reason;
    if (colon != std::string::npos) {
        reason = ChannelRules::echo(
            AsciiText::trimBlanks(std::string_view(argument).substr(colon + 1)), kMaxReason);
    }
    auto found = account(member, channel, name, word);
    if (!found) {
        return std::nullopt;
    }
    if (found->id == member.account.id) {
        rooms_.tellMember(member, channel, "You cannot " + std::string(word) + " yourself.");
        return std::nullopt;
    }
    if (!ModerationRights::outranks(standingOf(member.account, channel, action),
                                    standingOf(*found, channel, action))) {
        rooms_.tellMember(member, channel,
                          "You cannot " + std::string(word) + " " + found->name +
                              ": they rank as high as you or higher.");
        return std::nullopt;
    }
    return Target{std::move(*found), reason.empty() ? "No reason given." : reason};
}

void ModerationCommands::kick(Member& member, ActiveChannel& channel, const Target& target) {
    const std::string& name = target.account.name;
    if (!rooms_.remove(name, channel,
                       "You were kicked by " + member.name() + ": " + target.reason)) {
        rooms_.tellMember(member, channel, name + " is not in this channel.");
        return;
    }
    Log::info(member.name() + " kicked " + name + " from " + Log::quoted(channel.channel.name));
    rooms_.tellChannel(channel, name + " was kicked by " + member.name() + ": " + target.reason);
}

void ModerationCommands::channelBan(Member& member, ActiveChannel& channel, const Target& target) {
    const std::string& name = target.account.name;
    sanctions_.store().setChannelBan(channel.channel.id, target.account.id,
                                     {member.name(), target.reason, unixNow()});
    rooms_.remove(name, channel,
                  "You were banned from this channel by " + member.name() + ": " + target.reason);
    Log::info(member.name() + " banned " + name + " from " + Log::quoted(channel.channel.name));
    rooms_.tellChannel(
        channel, name + " was banned from this channel by " + member.name() + ": " + target.reason);
}

void ModerationCommands::accountBan(Member& member, ActiveChannel& channel, const Target& target) {
    const std::string& name = target.account.name;
    sanctions_.store().setAccountBan(target.account.id, {member.name(), target.reason, unixNow()});
    Log::info(member.name() + " banned " + name + " from every channel");
    const std::string line =
        name + " was banned from every channel by " + member.name() + ": " + target.reason;
    bool toldHere = false;
    for (const std::string& channelName : rooms_.channelsOf(name)) {
        ActiveChannel* each = rooms_.active(channelName);
        if (each == nullptr) {
            continue;
        }
        rooms_.remove(
            name, *each,
            "You were banned from every channel by " + member.name() + ": " + target.reason);
        // A channel the banned member was alone in is gone now.
        if ((each = rooms_.active(channelName)) != nullptr) {
            rooms_.tellChannel(*each, line);
            toldHere = toldHere || each == &channel;
        }
    }
    if (!toldHere) {
        rooms_.tellMember(member, channel, line);
    }
}

void ModerationCommands::suspend(Member& member, ActiveChannel& channel, const Target& target) {
    const std::string& name = target.account.name;
    sanctions_.store().setSuspension(target.account.id, {member.name(), target.reason, unixNow()});
    Log::info(member.name() + " suspended the account " + name);
    if (Member* online = online_.find(name)) {
        online->link.send(replies::kNotice, "Your account has been suspended by " + member.name() +
                                                ". You cannot log in until the suspension is "
                                                "lifted.");
        // Leaves every channel at once, this one included.
        online->link.finish("suspended by " + member.name());
    }
    rooms_.tellChannel(channel, name + "'s account was suspended by " + member.name() + ".");
}

void ModerationCommands::subnetBan(Member& member, ActiveChannel& channel, const Target& target) {
    const std::string& name = target.account.name;
    if (target.account.staffLevel > 0) {
        rooms_.tellMember(member, channel,
                          name + " is staff, and address bans never keep staff out.");
        return;
    }
    Member* online = online_.find(name);
    if (online == nullptr) {
        rooms_.tellMember(member, channel,
                          name +
                              " is not online; a subnet ban takes the address of a member "
                              "who is.");
        return;
    }
    const auto range = AddressRange::ofPeer(online->link.peerAddress());
    if (!range) {
        rooms_.tellMember(member, channel, name + "'s address cannot be banned as a range.");
        return;
    }
    sanctions_.banRange(*range, name, {member.name(), target.reason, unixNow()});
    Log::info(member.name() + " banned the address range " + *range + " (" + name + ")");
    int loggedOut = 0;
    // Everybody but staff from that range goes at once.
    online_.forEach([&](Member& each) {
        if (each.account.staffLevel > 0 || AddressRange::ofPeer(each.link.peerAddress()) != range) {
            return;
        }
        each.link.send(replies::kNotice,
                       "You have been logged out: your address range is banned from this server.");
        each.link.finish("address range " + *range + " banned");
        ++loggedOut;
    });
    rooms_.tellChannel(
        channel, name + " was banned from this server by " + member.name() + ": " + target.reason);
    rooms_.tellMember(member, channel,
                      "The address range " + *range + " is banned; " + std::to_string(loggedOut) +
                          (loggedOut == 1 ? " member" : " members") + " from it logged out.");
}

void ModerationCommands::unban(Member& member, ActiveChannel& channel,
                               const std::string& argument) {
    const Standing actor = standingOf(member.account, channel, ModerationAction::kChannelBan);
    if (!ModerationRights::may(ModerationAction::kChannelBan, actor)) {
        rooms_.tellMember(member, channel, "Only the channel host or staff can lift bans.");
        return;
    }
    if (const auto range = AddressRange::parse(argument)) {
        if (!ModerationRights::may(ModerationAction::kSubnetBan, actor)) {
            rooms_.tellMember(member, channel,
                              std::string(ModerationRights::refusal(ModerationAction::kSubnetBan)));
        } else if (sanctions_.liftRange(*range)) {
            Log::info(member.name() + " lifted the ban on the address range " + *range);
            rooms_.tellMember(member, channel,
                              "The ban on the address range " + *range + " is lifted.");
        } else {
            rooms_.tellMember(member, channel, "The address range " + *range + " is not banned.");
        }
        return;
    }
    const auto banned = account(member, channel, argument, "unban");
    if (!banned) {
        return;
    }
    std::vector<std::string> lifted;
    if (sanctions_.store().liftChannelBan(channel.channel.id, banned->id)) {
        lifted.push_back("the ban from this channel");
    }
    if (ModerationRights::may(ModerationAction::kAccountBan, actor) &&
        sanctions_.store().liftAccountBan(banned->id)) {
        lifted.push_back("the ban from every channel");
    }
    if (ModerationRights::may(ModerationAction::kSubnetBan, actor)) {
        std::vector<std::string> ranges;
        for (const ListedSanction& ban : sanctions_.ranges()) {
            if (AsciiText::equalNoCase(ban.member, banned->name)) {
                ranges.push_back(ban.target);
            }
        }
        for (const std::string& range : ranges) {
            sanctions_.liftRange(range);
            lifted.push_back("the ban on the address range " + range);
        }
    }
    if (lifted.empty()) {
        rooms_.tellMember(member, channel, banned->name + " has no ban here that you may lift.");
        return;
    }
    Log::info(member.name() + " lifted bans of " + banned->name);
    rooms_.tellChannel(channel, banned->name + " may come back: " + member.name() + " lifted " +
                                    joinWithCommas(lifted) + ".");
}

void ModerationCommands::unsuspend(Member& member, ActiveChannel& channel,
                                   const std::string& argument) {
    if (!ModerationRights::may(ModerationAction::kSuspend,
                               standingOf(member.account, channel, ModerationAction::kSuspend))) {
        rooms_.tellMember(member, channel, "Only staff of level 2 or 3 can lift suspensions.");
        return;
    }
    const auto suspended = account(member, channel, argument, "unsuspend");
    if (!suspended) {
        return;
    }
    if (!sanctions_.store().liftSuspension(suspended->id)) {
        rooms_.tellMember(member, channel, suspended->name + "'s account is not suspended.");
        return;
    }
    Log::info(member.name() + " lifted the suspension of " + suspended->name);
    rooms_.tellMember(member, channel,
                      suspended->name + "'s account is no longer suspended; they can log in.");
}

void ModerationCommands::listBans(Member& member, ActiveChannel& channel) {
    const Standing actor = standingOf(member.account, channel, ModerationAction::kListBans);
    if (!ModerationRights::may(ModerationAction::kListBans, actor)) {
        rooms_.tellMember(member, channel,
                          std::string(ModerationRights::refusal(ModerationAction::kListBans)));
        return;
    }
    auto list = [&](const std::string& heading, const std::string& none,
                    std::vector<ListedSanction> entries) {
        if (entries.empty()) {
            rooms_.tellMember(member, channel, none);
            return;
        }
        rooms_.tellMember(member, channel, heading);
        const bool more = entries.size() > kListedBans;
        entries.resize(std::min(entries.size(), kListedBans));
        for (const ListedSanction& entry : entries) {
            const std::string who =
                entry.member.empty() ? entry.target : entry.target + " (" + entry.member + ")";
            rooms_.tellMember(member, channel, "  " + who + " - " + describe(entry.sanction));
        }
        if (more) {
            rooms_.tellMember(member, channel, "  ... and more.");
        }
    };
    ModerationStore& store = sanctions_.store();
    list("Banned from this channel:", "Nobody is banned from this channel.",
         store.channelBans(channel.channel.id, kListedBans + 1));
    if (actor.staffLevel >= 1) {
        list("Banned from every channel:", "Nobody is banned from every channel.",
             store.accountBans(kListedBans + 1));
        list("Suspended accounts:", "No account is suspended.", store.suspensions(kListedBans + 1));
    }
    if (ModerationRights::may(ModerationAction::kSubnetBan, actor)) {
        list("Banned address ranges:", "No address range is banned.", sanctions_.ranges());
    }
}

void ModerationCommands::referral(Member& member, ActiveChannel& channel,
                                  const std::string& argument) {
    const auto who = account(member, channel, argument, "referal");
    if (!who) {
        return;
    }
    ModerationStore& store = sanctions_.store();
    std::string text;
    if (const auto by = store.referrerOf(who->id)) {
        text = who->name + " was referred by " + by->referrer + " (invited to " + by->channel +
               " on " + dateOf(by->at) + ").";
    } else {
        text = who->name + " was not referred by anyone.";
    }
    constexpr std::size_t kNamesShown = 20;
    const std::size_t count = store.referralCount(who->id);
    if (count == 0) {
        text += " " + who->name + " has referred nobody.";
    } else {
        text += " " + who->name + " has referred " + std::to_string(count) +
                (count == 1 ? " member: " : " members: ") +
                joinWithCommas(store.referredBy(who->id, kNamesShown)) +
                (count > kNamesShown ? ", ..." : ".");
    }
    rooms_.tellMember(member, channel, text);
}

}  // namespace tavren::server
