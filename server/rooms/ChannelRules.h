#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tavren::server {

// What a channel's name and topic may hold. Each check returns an empty string when the value is
// acceptable, else what is wrong, worded to follow "You cannot join "NAME": " or "Your topic was
// not set: ".
//
// A member channel's name is 6..32 bytes of printable Windows-1252 text: no control bytes (nor the
// five bytes the code page leaves undefined, which come out as control characters), no ":" or
// ";" (they separate fields on the wire), no blank at either end, and no "@" or "*" first, so
// that it never looks like a rank mark or the "*new_user*" entry. Official names, chosen by the
// operator, follow the same rules except the length: 1..100 bytes.
class ChannelRules {
  public:
    static constexpr std::size_t kMinNameLength = 6;
    static constexpr std::size_t kMaxNameLength = 32;
    static constexpr std::size_t kMaxOfficialNameLength = 100;

    static std::string checkName(std::string_view name);
    static std::string checkOfficialName(std::string_view name);
    // A topic is at most `maxLength` bytes with no control characters.
    static std::string checkTopic(std::string_view topic, std::size_t maxLength);

    // For echoing a name or word a client sent: its first `limit` bytes, control bytes as "?".
    static std::string echo(std::string_view text, std::size_t limit = 40);
};

}  // namespace tavren::server
