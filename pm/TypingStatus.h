#pragma once

#include <QString>
#include <optional>

namespace tavren {

// What a member is doing in a conversation's entry box. The numbers are the codes on the wire,
// the same in both directions: (2, 16) from the client, (2, 19) to it.
enum class TypingStatus { Typing = 1, Deleting = 2, Idle = 3, EnteredText = 4 };

// "My Status: (Typing..)" and its like: the member's own status.
QString ownTypingLabel(TypingStatus status);
// "Typing Status: (Typing..)" and its like: what the other member is doing.
QString peerTypingLabel(TypingStatus status);
// The one digit that travels.
QString typingCode(TypingStatus status);
// A code from the wire: exactly one of "1".."4"; anything else is nothing.
std::optional<TypingStatus> typingStatusFromCode(const QString& code);

}  // namespace tavren
