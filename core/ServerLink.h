#pragma once

#include <QAbstractSocket>
#include <QObject>
#include <QSslCertificate>
#include <QSslError>
#include <QSslSocket>
#include <QString>
#include <deque>
#include <functional>
#include <optional>
#include <utility>

#include "core/protocol/CodePair.h"
#include "core/protocol/Frame.h"
#include "core/protocol/FrameCutter.h"

namespace tavren {

class FloodMeters;

// The one TCP connection to the chat server (the socket `Sock`). Requests leave only through
// SendPacket; received bytes are cut into whole frames, which go to the frame sink (the
// dispatcher) one at a time in arrival order.
//
// The link reports what happened to the socket and decides nothing: the connection logic
// (ServerConnection) turns these signals into messages and the offline state. The one decision
// that cannot wait, whether a certificate the system does not vouch for is taken, is asked of
// the certificate judge while the handshake waits.
//
// Encrypted, TLS starts as soon as TCP is up (directly), or once the proxy's tunnel is up (the
// CONNECT goes in the clear); `connected()` and `tunnelUp()` then come after the handshake.
class ServerLink : public QObject {
    Q_OBJECT
  public:
    using FrameSink = std::function<void(const protocol::Frame&)>;
    // True takes the certificate despite `errors`; false ends the handshake.
    using CertificateJudge =
        std::function<bool(const QSslCertificate& certificate, const QList<QSslError>& errors)>;

    // How the last connection ended, for the status line of the login window.
    enum class Ending { None, Closed, Error, RemoteClosed };

    explicit ServerLink(FloodMeters& floodMeters, QObject* parent = nullptr);
    ~ServerLink() override;

    void setFrameSink(FrameSink sink) { sink_ = std::move(sink); }
    void setCertificateJudge(CertificateJudge judge) { judge_ = std::move(judge); }

    // Closes any previous connection and starts a new one. In proxy mode the first bytes that
    // come back are the proxy's answer to the tunnel request.
    // With `encryptFor` (the server's name, which its certificate must carry) the link is TLS.
    void connectTo(const QString& host, quint16 port, bool proxyMode,
                   const QString& encryptFor = QString());
    // Ends the connection at once and forgets buffered input. Emits nothing.
    void close();

    bool isConnected() const { return socket_.state() == QAbstractSocket::ConnectedState; }
    QAbstractSocket::SocketState socketState() const { return socket_.state(); }
    Ending lastEnding() const { return ending_; }
    // True between the connect request and the tunnel's "200" in proxy mode.
    bool tunnelPending() const { return cutter_.ProxyMode(); }
    // Whether the link is (to be) encrypted, and whether its handshake is running now.
    bool wantsEncryption() const { return encrypt_; }
    bool handshaking() const { return handshaking_; }
    bool isEncrypted() const { return socket_.isEncrypted(); }
    QSslCertificate peerCertificate() const { return socket_.peerCertificate(); }
    // "TLS 1.3" and the like while encrypted.
    QString protocolName() const;
    QString peerHost() const { return host_; }
    quint16 peerPort() const { return port_; }

    // Sends one request. When the socket is not connected the socket is closed again and
    // nothing is sent or counted; callers are not told. Every request except the typing
    // notice (cmd2 = 16) counts against the open windows' flood meters.
    void SendPacket(const QString& payload, protocol::CodePair code);
    // Unframed bytes: only the tunnel request to the proxy goes out this way.
    void sendRaw(const QByteArray& bytes);

  signals:
    void connected();
    void tunnelUp();
    // The server (or the proxy) closed the connection.
    void remoteClosed();
    void failed(QAbstractSocket::SocketError error, const QString& description);
    // The byte stream is not frames any more (or the proxy refused the tunnel); the link has
    // been closed and `text` says why.
    void streamRefused(const QString& text);
    // The judge did not take the server's certificate; the link has been closed.
    void certificateRefused(const QSslCertificate& certificate, const QList<QSslError>& errors);
    // The TLS handshake did not complete (`reason` says how); the link has been closed.
    void encryptionFailed(const QString& reason);

  public:
    // While a frame handler runs a nested event loop, frames that arrive are held for the outer
    // loop; at most this many bytes (held frames plus uncut input) before reading pauses.
    static constexpr std::size_t kMaxHeldBytes = 4 * 1024 * 1024;

  private:
    void onReadyRead();
    // Moves what the socket has into the cutter.
    void readFromSocket();
    void drainFrames();
    void holdFramesWhileNested();
    // Hands one cut result on; false when the link ended and draining must stop.
    bool deliver(protocol::CutResult& cut);
    std::size_t heldBytes() const;
    void onDisconnected();
    void onError(QAbstractSocket::SocketError error);
    void startEncryption();
    // The handshake ended without encryption: the judge's refusal, or `reason`.
    void reportHandshakeEnd(const QString& reason);
    void onSslErrors(const QList<QSslError>& errors);
    void onEncrypted();

    FloodMeters& floodMeters_;
    QSslSocket socket_;
    CertificateJudge judge_;
    protocol::FrameCutter cutter_;
    FrameSink sink_;
    QString host_;
    quint16 port_ = 0;
    Ending ending_ = Ending::None;
    bool draining_ = false;
    bool drainScheduled_ = false;
    // What was cut while a handler was still running (frames, and an error or the tunnel's
    // answer in their turn), in arrival order.
    std::deque<protocol::CutResult> held_;
    std::size_t heldPayloadBytes_ = 0;
    bool closing_ = false;
    bool encrypt_ = false;
    bool handshaking_ = false;
    bool viaProxy_ = false;
    QString verifyName_;
    // The judge refused: what it was shown, reported once the socket has closed.
    std::optional<std::pair<QSslCertificate, QList<QSslError>>> refused_;
};

}  // namespace tavren
