#include "rooms/ChannelDirectory.h"

#include "core/ServerSession.h"
#include "core/protocol/Catalogue.h"
#include "rooms/RoomSession.h"

namespace tavren {

ChannelDirectory::ChannelDirectory(ServerSession& server, RoomSession& rooms, QObject* parent)
    : QObject(parent), server_(server), rooms_(rooms) {
    server_.dispatcher().route(protocol::server_to_client::kChannelDirectory,
                               [this](const ServerMessage& m) { onDirectory(m); });
}

void ChannelDirectory::request() {
    if (server_.online()) {
        server_.link().SendPacket(QStringLiteral("Get"),
                                  protocol::client_to_server::kAskChannelDirectory);
    }
}

bool ChannelDirectory::join(const QString& channel) {
    if (channel.isEmpty()) {
        return false;
    }
    return rooms_.joinListed(channel);
}

void ChannelDirectory::onDirectory(const ServerMessage& message) {
    entries_ = DirectoryEntry::parseList(message.payload);
    emit listed();
}

}  // namespace tavren
