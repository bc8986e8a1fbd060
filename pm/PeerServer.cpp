#include "pm/PeerServer.h"

#include <QSslSocket>

namespace tavren {

void PeerServer::incomingConnection(qintptr descriptor) {
    auto* socket = new QSslSocket(this);
    if (!socket->setSocketDescriptor(descriptor)) {
        delete socket;
        return;
    }
    socket->setReadBufferSize(kHeldReadBufferSize);
    addPendingConnection(socket);
}

}  // namespace tavren
