#pragma once

#include <QIcon>

namespace tavren {

// The main window's tool-bar icons, drawn here (no picture files), at every size a tool bar or
// a menu asks for, so they stay sharp at any screen scale.
class ToolBarIcons {
  public:
    // A power button: log in, or off.
    static QIcon logInOrOff();
    // A speech bubble with a channel sign.
    static QIcon joinChannel();
    // A speech bubble with one person in it.
    static QIcon privateMessage();
    // A gear wheel.
    static QIcon settings();
    // A clock face, for the connected time.
    static QIcon connectedTime();
    // A padlock, shut (green) for an encrypted connection, open (grey) for a plain one.
    static QIcon padlock(bool shut);
};

}  // namespace tavren
