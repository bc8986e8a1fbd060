#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tavren::server {

// A member's status line (2, 1): "/away " + text, "/back", or "/help" from the server console.
// Rooms add their own commands later; until then anything else is answered as unknown.
struct StatusCommand {
    enum class Kind { kHelp, kAway, kBack, kUnknown };

    Kind kind = Kind::kUnknown;
    std::string argument;  // the away text; for an unknown command, its first word

    // The command word is matched without regard to case; surrounding blanks are ignored.
    static StatusCommand Parse(std::string_view text);
    // One line per command the server knows, for the console's list.
    static std::vector<std::string> HelpLines();
};

}  // namespace tavren::server
