#include "rooms/MemberRank.h"

namespace tavren {

MemberRank::Icon MemberRank::iconFor(const QString& listedName) {
    if (listedName.startsWith(QStringLiteral("@\u00B3"))) {
        return StaffHighest;
    }
    if (listedName.startsWith(QStringLiteral("@\u00B2"))) {
        return StaffSecond;
    }
    if (listedName.startsWith(QStringLiteral("@\u00B9"))) {
        return StaffThird;
    }
    if (listedName.startsWith(QLatin1Char('@'))) {
        return Host;
    }
    return Member;
}

}  // namespace tavren
