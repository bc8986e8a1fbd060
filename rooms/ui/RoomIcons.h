#pragma once

#include <QIcon>

#include "rooms/MemberRank.h"

namespace tavren {

// The room window's own pictures, drawn at run time: one badge per member rank and the mark of
// a channel with unread lines.
class RoomIcons {
  public:
    static QIcon rank(MemberRank::Icon icon);
    static QIcon unread();
};

}  // namespace tavren
