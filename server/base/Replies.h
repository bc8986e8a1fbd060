#pragma once

#include <string_view>

#include "core/protocol/Catalogue.h"

// The server's fixed answers: the group 3 and group 4 codes it uses and the texts the client
// recognises word for word.
namespace tavren::server::replies {

// Group 3 is read by the client from its payload alone; the second code only tells the two
// results apart for logs and tools.
inline constexpr protocol::CodePair kLoginResult{protocol::kLoginResultGroup, 1};
inline constexpr protocol::CodePair kSignUpResult{protocol::kLoginResultGroup, 2};
// Every notice the client shows with the title "Attention!".
inline constexpr protocol::CodePair kNotice{protocol::kNoticeGroup, 1};
// The message of the day: a notice of its own, so that the client can show it in its news pane.
inline constexpr protocol::CodePair kMessageOfTheDay{protocol::kNoticeGroup, 2};
// One news item after login (title U+0001 text), for the client's news pane and window.
inline constexpr protocol::CodePair kNewsItem{protocol::kNoticeGroup, 3};

inline constexpr std::string_view kNotRegistered = "Nickname not registered!";
inline constexpr std::string_view kAccountCreationError = "Account Creation Error!";
inline constexpr std::string_view kRegistrationSuccess = "Registration Success!";
// To a plain connection that logs in or signs up when the server takes encrypted ones only.
inline constexpr std::string_view kEncryptionRequired =
    "This server accepts encrypted connections only. Turn on \"Encrypted connection (TLS)\" "
    "on the Server page of the settings window and connect again.";

inline constexpr std::string_view kPing = "Ping";
inline constexpr std::string_view kOk = "OK";
inline constexpr std::string_view kDefaultRoom = "General";
inline constexpr std::string_view kServerName = "tavrend";

}  // namespace tavren::server::replies
