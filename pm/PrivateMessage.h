#pragma once

#include <QString>
#include <optional>

namespace tavren {

// A private message as the server relays it: sender ":" text, split once so the text keeps any
// further ":". The sender field may carry the sender's nickname format after U+0001.
struct PrivateMessage {
    QString sender;
    QString format;  // empty when the sender has none
    QString text;

    // Nothing when the payload has no ":" or its sender could not be a member's name.
    static std::optional<PrivateMessage> parse(const QString& payload);

    // Whether a name from the network can caption a conversation: 1 to 32 characters, none of
    // them a control character, a blank, ":" or ";". (The server's own names are stricter; a
    // name this refuses cannot be the server's.)
    static bool isPlausibleName(const QString& name);
};

}  // namespace tavren
