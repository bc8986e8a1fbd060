#pragma once

#include <QString>

namespace tavren {

// The operating-system name shown in the settings window's caption: the Windows releases by
// name, anything else as "Unknown: " followed by its version number.
class OperatingSystemName {
  public:
    struct Version {
        bool windows = false;
        bool windows9x = false;  // the 95/98/ME family
        int major = 0;
        int minor = 0;
        QString text;  // the version as the platform spells it
    };

    static QString of(const Version& version);
    // The machine this runs on.
    static Version current();
    static QString currentName() { return of(current()); }
};

}  // namespace tavren
