#include "server/rooms/RoomCommand.h"

#include <array>
#include <utility>

#include "server/base/AsciiText.h"

namespace tavren::server {

namespace {

constexpr std::size_t kEchoedWordLength = 40;

using Kind = RoomCommand::Kind;
constexpr std::array<std::pair<std::string_view, Kind>, 18> kCommands = {{
    {"/topic", Kind::kTopic},
    {"/motd", Kind::kMotd},
    {"/stats", Kind::kStats},
    {"/time", Kind::kTime},
    {"/help", Kind::kHelp},
    {"/info", Kind::kInfo},
    {"/kick", Kind::kKick},
    {"/ban", Kind::kBan},
    {"/chanban", Kind::kChannelBan},
    {"/subban", Kind::kSubnetBan},
    {"/suspend", Kind::kSuspend},
    {"/unban", Kind::kUnban},
    {"/unsuspend", Kind::kUnsuspend},
    {"/ipbans", Kind::kBanList},
    {"/referal", Kind::kReferral},
    {"/vote", Kind::kVote},
    {"/yes", Kind::kYes},
    {"/no", Kind::kNo},
}};

}  // namespace

RoomCommand RoomCommand::parse(std::string_view text) {
    const std::size_t space = text.find(' ');
    const std::string_view word = text.substr(0, space);
    RoomCommand command;
    // Only the start of the word is kept: the line may be anything at all.
    command.word = std::string(word.substr(0, kEchoedWordLength));
    if (space != std::string_view::npos) {
        command.argument = std::string(AsciiText::trimBlanks(text.substr(space + 1)));
    }
    for (const auto& [name, kind] : kCommands) {
        if (AsciiText::equalNoCase(word, name)) {
            command.kind = kind;
            break;
        }
    }
    return command;
}

std::vector<std::string> RoomCommand::helpLines() {
    return {
        "Commands of this server:",
        "/topic - show the channel's topic",
        "/topic TEXT - set the topic (the channel host and staff)",
        "/motd - show the message of the day",
        "/stats - members online, channels, and how long the server has been up",
        "/time - the server's time",
        "/info NAME - when a member joined and where they are now",
        "/referal NAME - who brought a member here, and whom they brought",
        "/vote QUESTION - ask the channel a yes-or-no question; /yes and /no answer it",
        "/kick NAME:REASON - send a member out of the channel (the channel host and staff)",
        "/chanban NAME:REASON - keep a member out of the channel (the channel host and staff)",
        "/ban NAME:REASON - keep a member out of every channel (staff of level 2 and 3)",
        "/suspend NAME - stop an account from logging in (staff of level 2 and 3)",
        "/subban NAME:REASON - stop logins from a member's address range (staff of level 3)",
        "/unban NAME or /unban RANGE - lift the bans you may lift",
        "/unsuspend NAME - let a suspended account log in again (staff of level 2 and 3)",
        "/ipbans - the bans of this channel (and, for staff, of the server)",
        "/help - this list",
    };
}

}  // namespace tavren::server
