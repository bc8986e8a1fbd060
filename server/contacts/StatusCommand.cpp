#include "server/contacts/StatusCommand.h"

#include <algorithm>
#include <cctype>

namespace tavren::server {

namespace {

constexpr std::size_t kEchoedWordLength = 40;

std::string_view Trim(std::string_view text) {
    const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
    while (!text.empty() && blank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && blank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

std::string Lower(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower;
}

}  // namespace

StatusCommand StatusCommand::Parse(std::string_view text) {
    text = Trim(text);
    const std::size_t space = text.find(' ');
    const std::string_view word = text.substr(0, space);
    const std::string_view rest =
        space == std::string_view::npos ? std::string_view() : Trim(text.substr(space + 1));
    const std::string command = Lower(word);
    if (command == "/help") {
        return {Kind::kHelp, {}};
    }
    if (command == "/away") {
        return {Kind::kAway, std::string(rest)};
    }
    if (command == "/back") {
        return {Kind::kBack, {}};
    }
    // Only the start of an unknown word is echoed back: the line may be anything at all.
    return {Kind::kUnknown, std::string(word.substr(0, kEchoedWordLength))};
}

std::vector<std::string> StatusCommand::HelpLines() {
    return {"/help - the commands this server knows", "/away TEXT - go away with that message",
            "/back - come back"};
}

}  // namespace tavren::server
