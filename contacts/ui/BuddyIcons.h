#pragma once

#include <QIcon>

#include "contacts/BuddyPresence.h"

namespace tavren {

// The buddy trees' own pictures, drawn at run time: a buddy online, offline, or online but
// away or idle, and a folder open ("down") or closed ("right").
class BuddyIcons {
  public:
    static QIcon presence(BuddyPresence::Image image);
    static QIcon folder(bool expanded);
};

}  // namespace tavren
