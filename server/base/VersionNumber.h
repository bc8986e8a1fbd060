#pragma once

#include <compare>
#include <optional>
#include <string>
#include <string_view>

namespace tavren::server {

// A client version as the client sends it: major, minor and revision in decimal joined by ".".
struct VersionNumber {
    int major = 0;
    int minor = 0;
    int revision = 0;

    // Exactly three dot-separated decimal numbers of at most five digits each; anything else
    // (signs, blanks, empty parts, a fourth part) is not a version.
    static std::optional<VersionNumber> parse(std::string_view text);
    std::string toString() const;

    friend auto operator<=>(const VersionNumber&, const VersionNumber&) = default;
    friend bool operator==(const VersionNumber&, const VersionNumber&) = default;
};

}  // namespace tavren::server
