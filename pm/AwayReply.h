#pragma once

#include <QString>

namespace tavren {

// The answer a member's client gives by itself to a private message while the member is away:
// "[Auto-Reply] " followed by the away message the member went away with, or by "I'm away
// right now." when there is none. The prefix is also the mark by which a client knows an
// answer for what it is: a message that starts with it is never answered, so that two away
// members cannot keep their clients answering each other.
class AwayReply {
  public:
    static QString prefix() { return QStringLiteral("[Auto-Reply] "); }
    static QString textFor(const QString& awayMessage);
    static bool isAwayReply(const QString& messageText);
};

}  // namespace tavren
