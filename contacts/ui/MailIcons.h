#pragma once

#include <QIcon>

namespace tavren {

// The main window's mail image, drawn here (no picture files) at every size a button asks for:
// "mailfull", a closed envelope with a red mark, while messages are waiting; "mailempty", a pale
// open envelope, when the inbox is empty.
class MailIcons {
  public:
    static QIcon mailFull();
    static QIcon mailEmpty();
};

}  // namespace tavren
