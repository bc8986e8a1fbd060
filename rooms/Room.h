#pragma once

#include <QString>
#include <QStringList>

namespace tavren {

// One joined channel, as its tab shows it.
struct Room {
    QString name;         // the caption: the channel as the server spells it
    int paneIndex = 0;    // the tab's tag: which pane, member list and input box are its own
    QStringList members;  // as the server sent them, rank marks and order included
    bool listed = false;  // a member list has arrived since the last join confirmation
    bool unread = false;
    // The password the channel was joined with, for joining it again after the link was lost.
    QString password;
};

}  // namespace tavren
