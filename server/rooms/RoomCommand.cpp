#include "server/rooms/RoomCommand.h"

#include <array>
#include <utility>

#include "server/base/AsciiText.h"

namespace tavren::server {

namespace {

constexpr std::size_t kEchoedWordLength = 40;

constexpr std::array<std::pair<std::string_view, RoomCommand::Kind>, 6> kCommands = {{
    {"/topic", RoomCommand::Kind::kTopic},
    {"/motd", RoomCommand::Kind::kMotd},
    {"/stats", RoomCommand::Kind::kStats},
    {"/time", RoomCommand::Kind::kTime},
    {"/help", RoomCommand::Kind::kHelp},
    {"/info", RoomCommand::Kind::kInfo},
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
        "/help - this list",
    };
}

}  // namespace tavren::server
