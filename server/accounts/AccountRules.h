#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tavren::server {

// What an account's fields may hold. Each check returns an empty string when the value is
// acceptable, else one sentence for the user saying what is wrong.
//
// Names are 2..20 ASCII letters, digits, "_", "-" or ".", starting with a letter. No blanks, so a
// slash command can take a name as one word; no ":" or ";", which separate fields on the wire;
// no "@" or "*", which mark ranks and the "*new_user*" entry. ASCII only, so that the
// case-insensitive comparison of names is the same everywhere.
//
// Passwords are 4..64 bytes with no control characters and no ":" or ";" (they travel between
// separators). E-mail addresses are 3..100 printable ASCII characters with one "@" that is
// neither first nor last, and no ":", ";", "," or blank.
class AccountRules {
  public:
    static constexpr std::size_t kMinNameLength = 2;
    static constexpr std::size_t kMaxNameLength = 20;
    static constexpr std::size_t kMinPasswordLength = 4;
    static constexpr std::size_t kMaxPasswordLength = 64;
    static constexpr std::size_t kMaxEmailLength = 100;
    static constexpr std::size_t kMaxNicknameFormatLength = 200;
    static constexpr int kMaxStaffLevel = 3;

    static std::string checkName(std::string_view name);
    static std::string checkPassword(std::string_view password);
    static std::string checkEmail(std::string_view email);
    // The nickname format is the client's own text; the server keeps it as long as it is short
    // and free of control characters and ":" (it travels inside the sender field of lines).
    static std::string checkNicknameFormat(std::string_view format);
};

}  // namespace tavren::server
