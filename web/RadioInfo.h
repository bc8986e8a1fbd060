#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>
#include <optional>

namespace tavren {

// What a station is playing, read from the JSON status page that Icecast servers publish
// ("/status-json.xsl": icestats.source, one object or a list of them, one per stream). The
// stream the player has chosen is picked by its address; otherwise the first that is on the air.
struct RadioInfo {
    QString station;  // server_name
    QString title;    // "Artist - Title"
    QString genre;
    std::optional<int> listeners;

    static std::optional<RadioInfo> parse(const QByteArray& json, const QUrl& stream);

    // Where a station's status page is when none is configured: the root of its server.
    static QUrl statusPageOf(const QUrl& stream);

    // One plain-text line: "Now playing on Groove Salad: Artist - Title (12 listeners)".
    QString line() const;
};

}  // namespace tavren
