#pragma once

#include <QAbstractSocket>
#include <QObject>
#include <QString>
#include <QTcpSocket>
#include <deque>
#include <functional>

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
// (ServerConnection) turns these signals into messages and the offline state.
class ServerLink : public QObject {
    Q_OBJECT
  public:
    using FrameSink = std::function<void(const protocol::Frame&)>;

    // How the last connection ended, for the status line of the login window.
    enum class Ending { None, Closed, Error, RemoteClosed };

    explicit ServerLink(FloodMeters& floodMeters, QObject* parent = nullptr);
    ~ServerLink() override;

    void setFrameSink(FrameSink sink) { sink_ = std::move(sink); }

    // Closes any previous connection and starts a new one. In proxy mode the first bytes that
    // come back are the proxy's answer to the tunnel request.
    void connectTo(const QString& host, quint16 port, bool proxyMode);
    // Ends the connection at once and forgets buffered input. Emits nothing.
    void close();

    bool isConnected() const { return socket_.state() == QAbstractSocket::ConnectedState; }
    QAbstractSocket::SocketState socketState() const { return socket_.state(); }
    Ending lastEnding() const { return ending_; }
    // True between the connect request and the tunnel's "200" in proxy mode.
    bool tunnelPending() const { return cutter_.ProxyMode(); }
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

    FloodMeters& floodMeters_;
    QTcpSocket socket_;
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
};

}  // namespace tavren
