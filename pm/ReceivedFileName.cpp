#include "pm/ReceivedFileName.h"

#include <QStringList>

namespace tavren {

namespace {

bool isDeviceName(const QString& base) {
    QString name = base;
    while (name.endsWith(QLatin1Char(' '))) {
        name.chop(1);
    }
    name = name.toUpper();
    static const QStringList exact = {
        QStringLiteral("CON"),    QStringLiteral("PRN"),    QStringLiteral("AUX"),
        QStringLiteral("NUL"),    QStringLiteral("CONIN$"), QStringLiteral("CONOUT$"),
        QStringLiteral("CLOCK$"),
    };
    if (exact.contains(name)) {
        return true;
    }
    // COM0..COM9 and LPT0..LPT9, the superscript digits included, which Windows reads alike.
    if (name.size() == 4 &&
        (name.startsWith(QLatin1String("COM")) || name.startsWith(QLatin1String("LPT")))) {
        const QChar digit = name.at(3);
        return (digit >= QLatin1Char('0') && digit <= QLatin1Char('9')) || digit == QChar(0x00B9) ||
               digit == QChar(0x00B2) || digit == QChar(0x00B3);
    }
    return false;
}

bool hasForbiddenCharacter(const QString& name) {
    static const QString forbidden = QStringLiteral("/\\:*?\"<>|");
    for (const QChar c : name) {
        if (c.unicode() < 32 || c.unicode() == 127 || forbidden.contains(c)) {
            return true;
        }
    }
    return false;
}

}  // namespace

std::optional<QString> ReceivedFileName::check(const QString& sent) {
    const qsizetype dot = sent.indexOf(QLatin1Char('.'));
    if (dot < 0) {
        return std::nullopt;
    }
    QString base = sent.left(dot);
    const QString extension = sent.mid(dot + 1);
    base.remove(QLatin1Char('.'));
    if (extension.isEmpty() || extension.size() > kMaxExtension || base.isEmpty() ||
        base.size() > kMaxBase) {
        return std::nullopt;
    }
    const QString name = base + QLatin1Char('.') + extension;
    if (hasForbiddenCharacter(name) || name.contains(QLatin1String("..")) ||
        name.endsWith(QLatin1Char('.')) || name.endsWith(QLatin1Char(' ')) ||
        base.trimmed().isEmpty() || isDeviceName(base)) {
        return std::nullopt;
    }
    return name;
}

bool ReceivedFileName::isPicture(const QString& name) {
    // The extension is what follows the first dot, as for the name rules.
    const qsizetype dot = name.indexOf(QLatin1Char('.'));
    if (dot < 0) {
        return false;
    }
    static const QStringList pictures = {QStringLiteral("png"), QStringLiteral("bmp"),
                                         QStringLiteral("jpeg"), QStringLiteral("gif"),
                                         QStringLiteral("jpg")};
    return pictures.contains(name.mid(dot + 1).toLower());
}

QString ReceivedFileName::safePart(const QString& text) {
    QString safe;
    safe.reserve(text.size());
    for (const QChar c : text) {
        const bool plain = (c >= QLatin1Char('a') && c <= QLatin1Char('z')) ||
                           (c >= QLatin1Char('A') && c <= QLatin1Char('Z')) ||
                           (c >= QLatin1Char('0') && c <= QLatin1Char('9')) ||
                           c == QLatin1Char('_') || c == QLatin1Char('-') || c == QLatin1Char('.');
        safe += plain ? c : QLatin1Char('_');
    }
    if (safe.isEmpty() || safe.startsWith(QLatin1Char('.'))) {
        safe.prepend(QLatin1Char('_'));
    }
    return safe;
}

}  // namespace tavren
