#include "server/rooms/ChannelRules.h"

#include <algorithm>

namespace tavren::server {

namespace {

bool isControl(char c) {
    const auto byte = static_cast<unsigned char>(c);
    // Below 32 and 127, and the bytes Windows-1252 leaves undefined, which map to C1 controls.
    return byte < 32 || byte == 127 || byte == 0x81 || byte == 0x8D || byte == 0x8F ||
           byte == 0x90 || byte == 0x9D;
}

bool isBlank(char c) {
    return c == ' ' || static_cast<unsigned char>(c) == 0xA0;  // space and no-break space
}

std::string checkCharacters(std::string_view name) {
    if (std::any_of(name.begin(), name.end(), isControl)) {
        return "a channel name holds no control characters.";
    }
    if (name.find_first_of(":;") != std::string_view::npos) {
        return "a channel name holds no ':' or ';'.";
    }
    if (isBlank(name.front()) || isBlank(name.back())) {
        return "a channel name has no blank at either end.";
    }
    if (name.front() == '@' || name.front() == '*') {
        return "a channel name does not start with '@' or '*'.";
    }
    return {};
}

}  // namespace

std::string ChannelRules::checkName(std::string_view name) {
    if (name.size() < kMinNameLength || name.size() > kMaxNameLength) {
        return "a channel name has 6 to 32 characters.";
    }
    return checkCharacters(name);
}

std::string ChannelRules::checkOfficialName(std::string_view name) {
    if (name.empty() || name.size() > kMaxOfficialNameLength) {
        return "an official channel name has 1 to 100 characters.";
    }
    return checkCharacters(name);
}

std::string ChannelRules::checkTopic(std::string_view topic, std::size_t maxLength) {
    if (topic.size() > maxLength) {
        return "a topic holds at most " + std::to_string(maxLength) + " characters.";
    }
    if (std::any_of(topic.begin(), topic.end(), isControl)) {
        return "a topic holds no control characters.";
    }
    return {};
}

std::string ChannelRules::echo(std::string_view text, std::size_t limit) {
    std::string shown(text.substr(0, limit));
    std::replace_if(shown.begin(), shown.end(), isControl, '?');
    return shown;
}

}  // namespace tavren::server
