#include "core/MemberLocator.h"

#include "core/ServerLink.h"
#include "core/protocol/Catalogue.h"

namespace tavren {

MemberLocator::MemberLocator(ServerLink& link, QObject* parent) : QObject(parent), link_(link) {}

bool MemberLocator::locate(const QString& name) {
    const QString trimmed = name.trimmed();
    if (trimmed.isEmpty() || trimmed.contains(QLatin1Char(':')) ||
        trimmed.contains(QLatin1Char(';'))) {
        return false;
    }
    link_.SendPacket(trimmed, protocol::client_to_server::kLocateUser);
    return true;
}

void MemberLocator::onLocateResult(const ServerMessage& message) {
    if (!message.payload.isEmpty()) {
        emit located(message.payload);
    }
}

}  // namespace tavren
