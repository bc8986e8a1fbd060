#pragma once

#include <QString>

namespace tavren {

// The operating-system name shown in the settings window's caption: the Windows releases by
// name, later Windows as "Unknown: " followed by its version number, and any other system by the
// product name it gives itself ("Debian GNU/Linux 12 (bookworm)"), which says more to its user
// than a bare number.
class OperatingSystemName {
  public:
    struct Version {
        bool windows = false;
        bool windows9x = false;  // the 95/98/ME family
        int major = 0;
        int minor = 0;
        QString text;         // the version as the platform spells it
        QString productName;  // the system's own name for itself, when it has one
    };

    static QString of(const Version& version);
    // The machine this runs on.
    static Version current();
    static QString currentName() { return of(current()); }
};

}  // namespace tavren
