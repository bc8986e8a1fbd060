#include "contacts/BuddyPresence.h"

#include <QStringList>

#include "contacts/BuddyNames.h"

namespace tavren {

namespace {

const QChar kNoBreakSpace(0x00A0);
constexpr int kRecordFields = 7;

bool isTrue(const QString& field) {
    return field == QLatin1String("True");
}

// Splits at ";" into at most `limit` fields, the last keeping any further ";".
QStringList splitLimited(const QString& text, int limit) {
    QStringList fields;
    qsizetype start = 0;
    while (fields.size() < limit - 1) {
        const qsizetype at = text.indexOf(QLatin1Char(';'), start);
        if (at < 0) {
            break;
        }
        fields << text.mid(start, at - start);
        start = at + 1;
    }
    fields << text.mid(start);
    return fields;
}

}  // namespace

BuddyPresence::Image BuddyPresence::image() const {
    if (!online) {
        return Image::Offline;
    }
    return away || idle ? Image::Unavailable : Image::Online;
}

QString BuddyPresence::imageKey(Image image) {
    switch (image) {
        case Image::Online:
            return QStringLiteral("+");
        case Image::Offline:
            return QStringLiteral("-");
        case Image::Unavailable:
            return QStringLiteral("u");
    }
    return QStringLiteral("-");
}

QString BuddyPresence::tooltip(const QString& name) const {
    QStringList lines{kNoBreakSpace + QStringLiteral("User: ") + name};
    if (online) {
        if (away) {
            lines << kNoBreakSpace + QStringLiteral("Away:  ") + awayText;
        }
        if (inChannel) {
            lines << kNoBreakSpace + QStringLiteral("In Channel.. ") + channel;
        }
        if (idle) {
            lines << (away || inChannel ? kNoBreakSpace + QStringLiteral("and Idle")
                                        : QStringLiteral("  Idle.."));
        }
    }
    return lines.join(QLatin1Char('\r'));
}

std::optional<PresenceRecord> PresenceRecord::parse(const QString& payload) {
    if (payload.contains(QLatin1Char(':'))) {
        return std::nullopt;  // a list, not a record
    }
    const QStringList fields = splitLimited(payload, kRecordFields);
    const auto field = [&fields](int index) { return fields.value(index); };

    PresenceRecord record;
    const QString qualified = field(0).trimmed();
    const qsizetype dot = qualified.indexOf(QLatin1Char('.'));
    record.folder = dot < 0 ? BuddyNames::defaultFolder() : qualified.left(dot);
    record.name = dot < 0 ? qualified : qualified.mid(dot + 1);
    if (!BuddyNames::isUserName(record.name)) {
        return std::nullopt;
    }
    BuddyPresence& presence = record.presence;
    presence.known = true;
    presence.online = isTrue(field(1));
    // An offline buddy is nowhere and doing nothing, whatever else the record says.
    if (presence.online) {
        presence.away = isTrue(field(2));
        presence.inChannel = isTrue(field(3));
        presence.idle = isTrue(field(4));
        presence.channel = presence.inChannel ? field(5) : QString();
        presence.awayText = presence.away ? field(6) : QString();
    }
    return record;
}

}  // namespace tavren
