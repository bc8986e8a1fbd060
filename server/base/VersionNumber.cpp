#include "server/base/VersionNumber.h"

#include <array>

namespace tavren::server {

namespace {

std::optional<int> parsePart(std::string_view digits) {
    if (digits.empty() || digits.size() > 5) {
        return std::nullopt;
    }
    int value = 0;
    for (char c : digits) {
        if (c < '0' || c > '9') {
            return std::nullopt;
        }
        value = value * 10 + (c - '0');
    }
    return value;
}

}  // namespace

std::optional<VersionNumber> VersionNumber::parse(std::string_view text) {
    std::array<int, 3> parts{};
    for (std::size_t index = 0; index < parts.size(); ++index) {
        const std::size_t dot = text.find('.');
        const bool last = index + 1 == parts.size();
        if (last != (dot == std::string_view::npos)) {
            return std::nullopt;
        }
        const auto part = parsePart(text.substr(0, dot));
        if (!part) {
            return std::nullopt;
        }
        parts[index] = *part;
        text = last ? std::string_view{} : text.substr(dot + 1);
    }
    return VersionNumber{parts[0], parts[1], parts[2]};
}

std::string VersionNumber::toString() const {
    return std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(revision);
}

}  // namespace tavren::server
