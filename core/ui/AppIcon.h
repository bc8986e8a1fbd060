#pragma once

#include <QIcon>

namespace tavren {

// The program's icon, drawn rather than loaded so the tray and the windows always have one:
// a speech bubble, green while online and grey while offline.
class AppIcon {
  public:
    static QIcon make(bool online);
};

}  // namespace tavren
