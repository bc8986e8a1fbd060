#pragma once

#include <QTcpServer>

namespace tavren {

// The listening socket of a direct connection. Its connections are QSslSockets, still plain:
// whether one becomes TLS is known only once the other member's accept has said whether its
// client encrypts, and that may come after the connection itself.
class PeerServer : public QTcpServer {
    Q_OBJECT
  public:
    // What a connection may hold unread before it is taken: a handshake's worth. Nobody but the
    // peer gets further, and a stranger cannot fill the memory meanwhile.
    static constexpr qint64 kHeldReadBufferSize = 64 * 1024;

    using QTcpServer::QTcpServer;

  protected:
    void incomingConnection(qintptr descriptor) override;
};

}  // namespace tavren
