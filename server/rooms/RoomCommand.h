#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tavren::server {

// A server command typed in a channel: a line that starts with "/". The command word is matched
// without regard to case; the rest, without the blanks around it, is the argument.
struct RoomCommand {
    enum class Kind {
        kTopic,
        kMotd,
        kStats,
        kTime,
        kHelp,
        kInfo,
        kKick,
        kBan,
        kChannelBan,
        kSubnetBan,
        kSuspend,
        kUnban,
        kUnsuspend,
        kBanList,
        kReferral,
        kVote,
        kYes,
        kNo,
        kUnknown
    };

    Kind kind = Kind::kUnknown;
    std::string word;      // the command word as typed, at most 40 bytes (echoed when unknown)
    std::string argument;  // the rest of the line, blanks at either end removed

    static RoomCommand parse(std::string_view text);
    // The /help answer, one line each, the first saying what follows.
    static std::vector<std::string> helpLines();
};

}  // namespace tavren::server
