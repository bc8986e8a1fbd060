#include "contacts/BuddyNames.h"

#include "core/WireText.h"

namespace tavren {

namespace {

bool isAsciiLetter(QChar c) {
    return (c >= QLatin1Char('a') && c <= QLatin1Char('z')) ||
           (c >= QLatin1Char('A') && c <= QLatin1Char('Z'));
}

bool isNameCharacter(QChar c) {
    return isAsciiLetter(c) || (c >= QLatin1Char('0') && c <= QLatin1Char('9')) ||
           c == QLatin1Char('_') || c == QLatin1Char('-') || c == QLatin1Char('.');
}

}  // namespace

bool BuddyNames::isUserName(const QString& name) {
    if (name.size() < 2 || name.size() > 20 || !isAsciiLetter(name.front())) {
        return false;
    }
    for (const QChar c : name) {
        if (!isNameCharacter(c)) {
            return false;
        }
    }
    return true;
}

bool BuddyNames::isFolderName(const QString& name) {
    if (name.isEmpty() || name.size() > kFolderMaxLength) {
        return false;
    }
    for (const QChar c : name) {
        // Control characters (U+0001 and U+0002 among them) and DEL, C1 controls included.
        if (c.category() == QChar::Other_Control || c == QLatin1Char(':') ||
            c == QLatin1Char(';') || c == QLatin1Char('.')) {
            return false;
        }
    }
    // A character the code page cannot hold would reach the server as "?".
    return WireText::fromWire(WireText::toWire(name)) == name;
}

}  // namespace tavren
