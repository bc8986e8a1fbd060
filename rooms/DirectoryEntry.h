#pragma once

#include <QList>
#include <QString>

namespace tavren {

// One channel of the directory (2, 2). The server sends five fields per record: name, members,
// topic, official ("True"/"False") and protected by a password ("True"/"False"). The status
// text is made of the last three kinds of field: "Public" for an official channel, "User" for a
// member's; starred ("*Public*") when it asks for a password; "Empty" or "Occupied".
struct DirectoryEntry {
    QString name;
    int members = 0;
    QString topic;
    bool official = false;
    bool passwordProtected = false;

    // Records at U+0002, fields at U+0001. Records without a name, or with a name no channel can
    // have (a ":" or ";" in it), are left out; a count that is no number reads as 0.
    static QList<DirectoryEntry> parseList(const QString& payload);

    // The member count formatted "00#": at least three digits, and an empty channel's "00".
    QString countText() const;
    // One of the eight: "*Public* Empty", "Public Empty", "*User* Empty", "User Empty",
    // "*Public* Occupied", "Public Occupied", "*User* Occupied", "User Occupied".
    QString statusText() const;
};

}  // namespace tavren
