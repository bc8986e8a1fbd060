#include "server/accounts/AccountRules.h"

#include <algorithm>

namespace tavren::server {

namespace {

bool isAsciiLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool isAsciiDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isControl(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 32 || byte == 127;
}

}  // namespace

std::string AccountRules::checkName(std::string_view name) {
    const bool goodLength = name.size() >= kMinNameLength && name.size() <= kMaxNameLength;
    const bool goodChars = std::all_of(name.begin(), name.end(), [](char c) {
        return isAsciiLetter(c) || isAsciiDigit(c) || c == '_' || c == '-' || c == '.';
    });
    if (goodLength && goodChars && isAsciiLetter(name.front())) {
        return {};
    }
    return "A name has 2 to 20 letters, digits, '_', '-' or '.', and starts with a letter.";
}

std::string AccountRules::checkPassword(std::string_view password) {
    const bool goodLength =
        password.size() >= kMinPasswordLength && password.size() <= kMaxPasswordLength;
    const bool goodChars = std::none_of(password.begin(), password.end(), [](char c) {
        return isControl(c) || c == ':' || c == ';';
    });
    if (goodLength && goodChars) {
        return {};
    }
    return "A password has 4 to 64 characters and no ':' or ';'.";
}

std::string AccountRules::checkEmail(std::string_view email) {
    const std::size_t at = email.find('@');
    const bool oneAt = at != std::string_view::npos && at > 0 && at + 1 < email.size() &&
                       email.find('@', at + 1) == std::string_view::npos;
    const bool goodChars = std::all_of(email.begin(), email.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte > 32 && byte < 127 && c != ':' && c != ';' && c != ',';
    });
    if (oneAt && goodChars && email.size() >= 3 && email.size() <= kMaxEmailLength) {
        return {};
    }
    return "An e-mail address looks like name@example.org (at most 100 characters).";
}

std::string AccountRules::checkNicknameFormat(std::string_view format) {
    // A ":" would end the sender field of every relayed line early.
    if (format.size() <= kMaxNicknameFormatLength &&
        std::none_of(format.begin(), format.end(),
                     [](char c) { return isControl(c) || c == ':'; })) {
        return {};
    }
    return "A nickname format has at most 200 characters, no control characters and no ':'.";
}

}  // namespace tavren::server
