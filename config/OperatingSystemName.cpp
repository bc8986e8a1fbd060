#include "config/OperatingSystemName.h"

#include <QOperatingSystemVersion>
#include <QSysInfo>

namespace tavren {

QString OperatingSystemName::of(const Version& v) {
    if (v.windows && v.windows9x && v.major == 4) {
        if (v.minor == 0) {
            return QStringLiteral("Windows 95");
        }
        if (v.minor == 10) {
            return QStringLiteral("Windows 98");
        }
        if (v.minor == 90) {
            return QStringLiteral("Windows ME");
        }
    }
    if (v.windows && !v.windows9x) {
        if (v.major == 3 && v.minor == 51) {
            return QStringLiteral("Windows NT 351");
        }
        if (v.major == 4) {
            return QStringLiteral("Windows NT 4");
        }
        if (v.major == 5 && v.minor == 0) {
            return QStringLiteral("Windows 2000");
        }
        if (v.major == 5 && v.minor == 1) {
            return QStringLiteral("Windows XP");
        }
        if (v.major == 5 && v.minor == 2) {
            return QStringLiteral("Windows 2003");
        }
    }
    if (!v.windows && !v.productName.isEmpty()) {
        return v.productName;
    }
    return QStringLiteral("Unknown: ") + v.text;
}

OperatingSystemName::Version OperatingSystemName::current() {
    const auto os = QOperatingSystemVersion::current();
    Version v;
    v.windows = os.type() == QOperatingSystemVersion::Windows;
    v.major = os.majorVersion();
    v.minor = os.minorVersion();
    v.text = QSysInfo::productVersion();
    if (v.text.isEmpty() || v.text == QLatin1String("unknown")) {
        v.text = QSysInfo::kernelVersion();
    }
    v.productName = QSysInfo::prettyProductName();
    return v;
}

}  // namespace tavren
