#pragma once

#include <QString>
#include <QStringList>

namespace tavren {

// The index of the first caption equal to `channel` when both are lower-cased, -1 when none.
// Room windows use it for RoomLineTarget::roomIndex: a line for "Lobby" reaches the tab "lobby".
int FirstRoomWithCaption(const QStringList& captions, const QString& channel);

}  // namespace tavren
