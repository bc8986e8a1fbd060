#include "rooms/MemberListUpdate.h"

namespace tavren {

std::optional<MemberListUpdate> MemberListUpdate::parse(const QString& payload) {
    if (!payload.contains(QLatin1Char(':')) || !payload.contains(QLatin1Char(';'))) {
        return std::nullopt;
    }
    const qsizetype colon = payload.indexOf(QLatin1Char(':'));
    MemberListUpdate update;
    update.channel = payload.left(colon);
    // Only the field right after the channel holds names; a stray ":" later ends it.
    const QString names = payload.mid(colon + 1).section(QLatin1Char(':'), 0, 0);
    for (const QString& name : names.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
        update.names << name;
    }
    return update;
}

}  // namespace tavren
