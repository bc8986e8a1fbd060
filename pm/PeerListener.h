#pragma once

#include <QHostAddress>
#include <QObject>
#include <QString>
#include <memory>
#include <optional>
#include <vector>

#include "pm/PeerServer.h"

class QSslSocket;
class QTimer;

namespace tavren {

class PeerCertificate;
class PeerTlsHandshake;

// The listening side of a direct connection: a port of the member's range, and the one peer it
// is meant for.
//
// Only a connection from the address the server relayed for the peer is taken; any other is
// closed at once. The requester learns that address only with the peer's accept, which may
// arrive after the peer's connection itself (the two travel different ways), so until the address
// is known a few connections are held unread for a few seconds and then taken or closed.
//
// When both clients announced a certificate, an address is not enough: a connection from it is
// taken only once its TLS handshake shows the certificate the server relayed for the peer. One
// that fails (somebody else behind the same address) is closed and the port stays open for the
// real peer, so a stranger cannot spoil the connection by coming first.
class PeerListener : public QObject {
    Q_OBJECT
  public:
    // Connections held or in their handshake at once; more are closed.
    static constexpr int kMaxHeld = 4;
    static constexpr int kHoldMs = 10000;

    explicit PeerListener(QObject* parent = nullptr);
    ~PeerListener() override;

    // Listens on the first port of lower..upper (in either order, within 1..65535) that is free;
    // the port, or nothing when none is.
    std::optional<quint16> listenInRange(int lower, int upper);
    bool listening() const { return server_.isListening(); }
    quint16 port() const { return server_.serverPort(); }
    // From now on only `peer` is taken; a held connection from it is taken at once. With `own`
    // and a `fingerprint` the connection must pass the TLS handshake first, presenting `own` and
    // showing a certificate with `fingerprint`.
    void expect(const QHostAddress& peer, std::shared_ptr<const PeerCertificate> own = nullptr,
                const QString& fingerprint = QString());
    // Stops listening and closes every held connection.
    void stop();

  signals:
    // The peer's connection, handed over (parented to nobody; the receiver owns it), encrypted
    // when expect() asked for it. The listener has stopped listening.
    void peerConnected(QSslSocket* socket);
    // A connection from somebody else was closed.
    void strangerRefused(const QHostAddress& from);
    // A connection from the peer's address failed its TLS handshake and was closed.
    void impostorRefused(const QHostAddress& from, const QString& reason);

  private:
    struct Pending {
        QSslSocket* socket;
        QTimer* timer;                // while held, before the address is known
        PeerTlsHandshake* handshake;  // while its handshake runs
    };

    void onNewConnection();
    void hold(QSslSocket* socket);
    void admit(QSslSocket* socket);
    void take(QSslSocket* socket);
    void refuse(QSslSocket* socket);
    // Forgets the entry of `socket` (its timer, its handshake); the socket itself stays.
    void release(QSslSocket* socket);
    static void release(const Pending& pending);
    bool encrypting() const { return own_ != nullptr && !fingerprint_.isEmpty(); }

    PeerServer server_;
    QHostAddress expected_;
    std::shared_ptr<const PeerCertificate> own_;
    QString fingerprint_;
    std::vector<Pending> pending_;
};

}  // namespace tavren
