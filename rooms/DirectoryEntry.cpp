#include "rooms/DirectoryEntry.h"

#include <QStringList>

namespace tavren {

QList<DirectoryEntry> DirectoryEntry::parseList(const QString& payload) {
    QList<DirectoryEntry> entries;
    for (const QString& record : payload.split(QChar(0x02), Qt::SkipEmptyParts)) {
        const QStringList fields = record.split(QChar(0x01));
        DirectoryEntry entry;
        entry.name = fields.value(0);
        if (entry.name.trimmed().isEmpty() || entry.name.contains(QLatin1Char(':')) ||
            entry.name.contains(QLatin1Char(';'))) {
            continue;
        }
        bool isNumber = false;
        entry.members = qMax(0, fields.value(1).toInt(&isNumber));
        if (!isNumber) {
            entry.members = 0;
        }
        entry.topic = fields.value(2);
        entry.official = fields.value(3) == QLatin1String("True");
        entry.passwordProtected = fields.value(4) == QLatin1String("True");
        entries.push_back(entry);
    }
    return entries;
}

QString DirectoryEntry::countText() const {
    // "00#": the two zeros always show, the last place only for a digit other than a leading
    // zero, so nobody in the channel reads "00" and five members "005".
    if (members == 0) {
        return QStringLiteral("00");
    }
    return QStringLiteral("%1").arg(members, 3, 10, QLatin1Char('0'));
}

QString DirectoryEntry::statusText() const {
    const QString kind = official ? QStringLiteral("Public") : QStringLiteral("User");
    const QString shown = passwordProtected ? QLatin1Char('*') + kind + QLatin1Char('*') : kind;
    return shown + (members > 0 ? QStringLiteral(" Occupied") : QStringLiteral(" Empty"));
}

}  // namespace tavren
