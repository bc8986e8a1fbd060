#include "pm/PrivateMessage.h"

namespace tavren {

namespace {
constexpr qsizetype kLongestName = 32;
}  // namespace

bool PrivateMessage::isPlausibleName(const QString& name) {
    if (name.isEmpty() || name.size() > kLongestName) {
        return false;
    }
    for (const QChar c : name) {
        if (c.unicode() < 0x20 || c.unicode() == 0x7F || c.isSpace() || c == QLatin1Char(':') ||
            c == QLatin1Char(';')) {
            return false;
        }
    }
    return true;
}

std::optional<PrivateMessage> PrivateMessage::parse(const QString& payload) {
    const qsizetype colon = payload.indexOf(QLatin1Char(':'));
    if (colon < 0) {
        return std::nullopt;
    }
    const QString senderField = payload.left(colon);
    PrivateMessage message;
    const qsizetype mark = senderField.indexOf(QChar(1));
    message.sender = mark < 0 ? senderField : senderField.left(mark);
    if (mark >= 0) {
        message.format = senderField.mid(mark + 1);
    }
    if (!isPlausibleName(message.sender)) {
        return std::nullopt;
    }
    message.text = payload.mid(colon + 1);
    return message;
}

}  // namespace tavren
