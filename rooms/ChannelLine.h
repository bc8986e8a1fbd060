#pragma once

#include <QString>

namespace tavren {

// One line of a channel as the server relays it: channel ":" sender ":" text, where the text
// keeps any further ":". The sender field may carry the sender's nickname format after U+0001.
struct ChannelLine {
    QString channel;
    QString sender;
    QString format;  // empty when the sender has none
    QString text;

    // The sender of lines from the channel host or the server itself.
    static QString chanHost() { return QStringLiteral("**ChanHost"); }
    bool fromChanHost() const { return sender == chanHost(); }

    // Missing fields read as empty.
    static ChannelLine parse(const QString& payload);
};

}  // namespace tavren
