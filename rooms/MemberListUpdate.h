#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace tavren {

// A channel's member list as the server sends it: the channel, ":", then the names, each
// followed by ";". Names keep their rank marks and the server's order, which is the ranking.
struct MemberListUpdate {
    QString channel;
    QStringList names;

    // Nothing for a payload without both a ":" and a ";" (not a list; the old one stays).
    static std::optional<MemberListUpdate> parse(const QString& payload);
};

}  // namespace tavren
