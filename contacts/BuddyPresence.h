#pragma once

#include <QString>
#include <optional>

namespace tavren {

// What the server last said about one buddy. `known` stays false until the first presence
// record for the buddy arrives: the records that follow a new list only tell what is already
// the case, and they must not sound or notify as if the buddy had just come or gone.
struct BuddyPresence {
    // The picture a buddy shows: online, offline, or online but away or idle ("u": the buddy
    // is there but may not answer soon).
    enum class Image { Online, Offline, Unavailable };

    bool known = false;
    bool online = false;
    bool away = false;
    bool inChannel = false;
    bool idle = false;
    QString channel;
    QString awayText;

    Image image() const;
    // "+", "-" or "u".
    static QString imageKey(Image image);

    // The tooltip: "User: " and the name, then what the buddy is doing, one line each, joined
    // by carriage returns and each led by a no-break space; a buddy who is only idle says
    // "  Idle.." instead.
    QString tooltip(const QString& name) const;

    bool operator==(const BuddyPresence& other) const = default;
};

// One presence record from the server: folder "." name, then online, away, in channel, idle
// ("True"/"False"), the channel and the away text, separated by ";" (the away text keeps any
// further ";"). Nothing for a record that names no valid member.
struct PresenceRecord {
    QString folder;
    QString name;
    BuddyPresence presence;

    static std::optional<PresenceRecord> parse(const QString& payload);
};

}  // namespace tavren
