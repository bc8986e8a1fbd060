#include "pm/TypingStatus.h"

namespace tavren {

namespace {

QString stateWord(TypingStatus status) {
    switch (status) {
        case TypingStatus::Typing:
            return QStringLiteral("(Typing..)");
        case TypingStatus::Deleting:
            return QStringLiteral("(BackSpacing..)");
        case TypingStatus::Idle:
            return QStringLiteral("(Nothing..)");
        case TypingStatus::EnteredText:
            return QStringLiteral("(Entered Text..)");
    }
    return QStringLiteral("(Nothing..)");
}

}  // namespace

QString ownTypingLabel(TypingStatus status) {
    return QStringLiteral("My Status: ") + stateWord(status);
}

QString peerTypingLabel(TypingStatus status) {
    return QStringLiteral("Typing Status: ") + stateWord(status);
}

QString typingCode(TypingStatus status) {
    return QString::number(static_cast<int>(status));
}

std::optional<TypingStatus> typingStatusFromCode(const QString& code) {
    if (code.size() != 1 || code[0] < QLatin1Char('1') || code[0] > QLatin1Char('4')) {
        return std::nullopt;
    }
    return static_cast<TypingStatus>(code[0].unicode() - '0');
}

}  // namespace tavren
