#pragma once

#include <QHostAddress>
#include <QObject>
#include <QTcpServer>
#include <optional>
#include <vector>

class QTcpSocket;
class QTimer;

namespace tavren {

// The listening side of a direct connection: a port of the member's range, and the one peer it
// is meant for.
//
// Only a connection from the address the server relayed for the peer is taken; any other is
// closed at once. The requester learns that address only with the peer's accept, which may
// arrive after the peer's connection itself (the two travel different ways), so until the address
// is known a few connections are held unread for a few seconds and then taken or closed.
class PeerListener : public QObject {
    Q_OBJECT
  public:
    static constexpr int kMaxHeld = 4;
    static constexpr int kHoldMs = 10000;

    explicit PeerListener(QObject* parent = nullptr);
    ~PeerListener() override;

    // Listens on the first port of lower..upper (in either order, within 1..65535) that is free;
    // the port, or nothing when none is.
    std::optional<quint16> listenInRange(int lower, int upper);
    bool listening() const { return server_.isListening(); }
    quint16 port() const { return server_.serverPort(); }
    // From now on only `peer` is taken; a held connection from it is taken at once.
    void expect(const QHostAddress& peer);
    // Stops listening and closes every held connection.
    void stop();

  signals:
    // The peer's connection, handed over (parented to nobody; the receiver owns it). The
    // listener has stopped listening.
    void peerConnected(QTcpSocket* socket);
    // A connection from somebody else was closed.
    void strangerRefused(const QHostAddress& from);

  private:
    void onNewConnection();
    void take(QTcpSocket* socket);
    void refuse(QTcpSocket* socket);

    QTcpServer server_;
    QHostAddress expected_;
    struct Held {
        QTcpSocket* socket;
        QTimer* timer;
    };
    std::vector<Held> held_;
};

}  // namespace tavren
