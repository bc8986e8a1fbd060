#include "pm/AwayReply.h"

namespace tavren {

QString AwayReply::textFor(const QString& awayMessage) {
    const QString message = awayMessage.simplified();
    return prefix() + (message.isEmpty() ? QStringLiteral("I'm away right now.") : message);
}

bool AwayReply::isAwayReply(const QString& messageText) {
    return messageText.startsWith(prefix());
}

}  // namespace tavren
