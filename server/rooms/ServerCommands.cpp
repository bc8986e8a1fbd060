#include "server/rooms/ServerCommands.h"

#include <ctime>

#include "server/accounts/AccountRules.h"
#include "server/accounts/AccountStore.h"
#include "server/base/Log.h"
#include "server/net/PresenceHub.h"
#include "server/rooms/ChannelRules.h"
#include "server/rooms/ChannelVotes.h"
#include "server/rooms/ModerationCommands.h"
#include "server/rooms/RoomService.h"
#include "server/session/Member.h"

namespace tavren::server {

namespace {

// "Mon, 23 Nov 2026 07:40:59 UTC". The server never sets a locale, so the names are English.
std::string formatUtc(std::time_t when, const char* format) {
    std::tm utc{};
    gmtime_r(&when, &utc);
    char text[64];
    const std::size_t length = std::strftime(text, sizeof text, format, &utc);
    return std::string(text, length);
}

std::string joinNames(const std::vector<std::string>& names) {
    std::string joined;
    for (const std::string& name : names) {
        if (!joined.empty()) {
            joined += ", ";
        }
        joined += name;
    }
    return joined;
}

}  // namespace

ServerCommands::ServerCommands(RoomService& rooms, AccountStore& accounts, PresenceHub& hub,
                               ModerationCommands& moderation, ChannelVotes& votes,
                               const std::string& messageOfTheDay, std::size_t maxTopic)
    : rooms_(rooms),
      accounts_(accounts),
      hub_(hub),
      moderation_(moderation),
      votes_(votes),
      messageOfTheDay_(messageOfTheDay),
      maxTopic_(maxTopic) {}

void ServerCommands::run(Member& member, ActiveChannel& channel, std::string_view text) {
    const RoomCommand command = RoomCommand::parse(text);
    switch (command.kind) {
        case RoomCommand::Kind::kTopic:
            if (command.argument.empty()) {
                rooms_.tellMember(member, channel,
                                  channel.channel.topic.empty()
                                      ? "This channel has no topic."
                                      : "Topic: " + channel.channel.topic);
            } else {
                topic(member, channel, command.argument);
            }
            return;
        case RoomCommand::Kind::kMotd:
            rooms_.tellMember(
                member, channel,
                messageOfTheDay_.empty() ? "There is no message of the day." : messageOfTheDay_);
            return;
        case RoomCommand::Kind::kStats:
            rooms_.tellMember(member, channel, stats());
            return;
        case RoomCommand::Kind::kTime:
            rooms_.tellMember(
                member, channel,
                "Server time: " + formatUtc(std::time(nullptr), "%a, %d %b %Y %H:%M:%S UTC"));
            return;
        case RoomCommand::Kind::kHelp:
            for (const std::string& line : RoomCommand::helpLines()) {
                rooms_.tellMember(member, channel, line);
            }
            return;
        case RoomCommand::Kind::kInfo:
            rooms_.tellMember(member, channel, info(command.argument));
            return;
        case RoomCommand::Kind::kKick:
        case RoomCommand::Kind::kBan:
        case RoomCommand::Kind::kChannelBan:
        case RoomCommand::Kind::kSubnetBan:
        case RoomCommand::Kind::kSuspend:
        case RoomCommand::Kind::kUnban:
        case RoomCommand::Kind::kUnsuspend:
        case RoomCommand::Kind::kBanList:
        case RoomCommand::Kind::kReferral:
            moderation_.run(command.kind, member, channel, command.argument);
            return;
        case RoomCommand::Kind::kVote:
            votes_.ask(member, channel, command.argument);
            return;
        case RoomCommand::Kind::kYes:
        case RoomCommand::Kind::kNo:
            votes_.answer(member, channel, command.kind == RoomCommand::Kind::kYes);
            return;
        case RoomCommand::Kind::kUnknown:
            rooms_.tellMember(member, channel,
                              "Unknown command \"" + command.word +
                                  "\". Type /help for the commands this server knows.");
            return;
    }
}

void ServerCommands::topic(Member& member, ActiveChannel& channel, const std::string& newTopic) {
    const bool host = !channel.channel.official && channel.channel.hostId == member.account.id;
    if (!host && member.account.staffLevel == 0) {
        rooms_.tellMember(member, channel, "Only the channel host or staff can change the topic.");
        return;
    }
    if (const std::string problem = ChannelRules::checkTopic(newTopic, maxTopic_);
        !problem.empty()) {
        rooms_.tellMember(member, channel, "Your topic was not set: " + problem);
        return;
    }
    rooms_.setTopic(channel, newTopic);
    Log::info(member.name() + " set the topic of " + Log::quoted(channel.channel.name));
    rooms_.tellChannel(channel, member.name() + " changed the topic to: " + newTopic);
}

std::string ServerCommands::stats() {
    const auto up = std::chrono::duration_cast<std::chrono::minutes>(
                        std::chrono::steady_clock::now() - startedAt_)
                        .count();
    return "Members online: " + std::to_string(hub_.onlineCount()) +
           ". Channels: " + std::to_string(rooms_.channelCount()) + " (" +
           std::to_string(rooms_.channelsInUse()) + " in use). Server up " +
           std::to_string(up / (24 * 60)) + "d " + std::to_string(up / 60 % 24) + "h " +
           std::to_string(up % 60) + "m.";
}

std::string ServerCommands::info(const std::string& name) {
    if (name.empty()) {
        return "Whom? Type /info and a member's name.";
    }
    // A name that breaks the rules cannot belong to any account; no need to look.
    std::optional<Account> account;
    if (AccountRules::checkName(name).empty()) {
        account = accounts_.findByName(name);
    }
    if (!account) {
        return "There is no member called " + ChannelRules::echo(name) + ".";
    }
    std::string text = account->name + ": member since " +
                       formatUtc(static_cast<std::time_t>(account->createdAt), "%Y-%m-%d") + ", ";
    if (!hub_.isOnline(account->name)) {
        text += "offline";
    } else if (const auto channels = rooms_.channelsOf(account->name); channels.empty()) {
        text += "online, but not in a channel";
    } else {
        text += "online in " + joinNames(channels);
    }
    if (account->staffLevel > 0) {
        text += ", staff level " + std::to_string(account->staffLevel);
    }
    return text;
}

}  // namespace tavren::server
