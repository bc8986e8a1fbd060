#include "core/ServerLink.h"

#include "core/FloodMeters.h"
#include "core/TlsProtocolName.h"
#include "core/WireText.h"
#include "core/protocol/Catalogue.h"

namespace tavren {

namespace {
// The typing notice goes out with every key stroke; it must not fill the flood meters.
constexpr std::int16_t kUnmeteredCode = 16;
}  // namespace

ServerLink::ServerLink(FloodMeters& floodMeters, QObject* parent)
    : QObject(parent), floodMeters_(floodMeters), socket_(this) {
    socket_.setObjectName(QStringLiteral("Sock"));
    // Bounded, so that input we are not ready to cut stays in the kernel and TCP slows the
    // server down instead of the client buffering without end.
    socket_.setReadBufferSize(static_cast<qint64>(kMaxHeldBytes));
    connect(&socket_, &QSslSocket::connected, this, [this] {
        ending_ = Ending::None;
        if (encrypt_ && !viaProxy_) {
            startEncryption();
            return;
        }
        emit connected();
    });
    connect(&socket_, &QSslSocket::encrypted, this, &ServerLink::onEncrypted);
    connect(&socket_, &QSslSocket::sslErrors, this, &ServerLink::onSslErrors);
    connect(&socket_, &QSslSocket::readyRead, this, &ServerLink::onReadyRead);
    connect(&socket_, &QSslSocket::disconnected, this, &ServerLink::onDisconnected);
    connect(&socket_, &QSslSocket::errorOccurred, this, &ServerLink::onError);
}

void ServerLink::startEncryption() {
    handshaking_ = true;
    refused_.reset();
    // The name the member gave is what the certificate must be for.
    socket_.setPeerVerifyName(verifyName_);
    socket_.startClientEncryption();
}

void ServerLink::onSslErrors(const QList<QSslError>& errors) {
    if (judge_ && judge_(socket_.peerCertificate(), errors)) {
        socket_.ignoreSslErrors(errors);
        return;
    }
    // Not taken: the socket ends the handshake itself once this returns.
    refused_.emplace(socket_.peerCertificate(), errors);
}

void ServerLink::onEncrypted() {
    handshaking_ = false;
    if (viaProxy_) {
        emit tunnelUp();
    } else {
        emit connected();
    }
}

QString ServerLink::protocolName() const {
    return TlsProtocolName::of(socket_);
}

ServerLink::~ServerLink() {
    // The socket reports its own teardown; by then the rest of the link is gone.
    socket_.disconnect(this);
    socket_.abort();
}

void ServerLink::connectTo(const QString& host, quint16 port, bool proxyMode,
                           const QString& encryptFor) {
    close();
    host_ = host;
    port_ = port;
    encrypt_ = !encryptFor.isEmpty();
    verifyName_ = encryptFor;
    viaProxy_ = proxyMode;
    handshaking_ = false;
    refused_.reset();
    ending_ = Ending::None;
    cutter_.SetProxyMode(proxyMode);
    socket_.connectToHost(host, port);
}

void ServerLink::reportHandshakeEnd(const QString& reason) {
    handshaking_ = false;
    auto refused = std::exchange(refused_, std::nullopt);
    close();
    ending_ = Ending::Error;
    if (refused) {
        emit certificateRefused(refused->first, refused->second);
    } else {
        emit encryptionFailed(reason);
    }
}

void ServerLink::close() {
    handshaking_ = false;
    cutter_.Reset();
    held_.clear();
    heldPayloadBytes_ = 0;
    if (socket_.state() != QAbstractSocket::UnconnectedState) {
        // abort() reports the disconnection synchronously; it is ours, not the server's.
        closing_ = true;
        socket_.abort();
        closing_ = false;
        if (ending_ == Ending::None) {
            ending_ = Ending::Closed;
        }
    }
}

void ServerLink::SendPacket(const QString& payload, protocol::CodePair code) {
    if (!isConnected()) {
        close();
        return;
    }
    const std::string frame = protocol::EncodeFrame(code, WireText::toWire(payload));
    socket_.write(frame.data(), static_cast<qint64>(frame.size()));
    if (code.cmd2 != kUnmeteredCode) {
        floodMeters_.FloodTick();
    }
}

void ServerLink::sendRaw(const QByteArray& bytes) {
    if (isConnected()) {
        socket_.write(bytes);
    }
}

void ServerLink::onReadyRead() {
    if (!isConnected()) {
        close();
        return;
    }
    if (draining_) {
        // A handler is running a nested event loop (a modal window opened while a frame was
        // handled). The outer loop dispatches what arrives, in order, once the handler returns;
        // pings cannot wait that long, or the server takes the silence for a dead client.
        holdFramesWhileNested();
        return;
    }
    readFromSocket();
    // Frames are handled in a turn of their own, not inside the socket's signal: a socket does
    // not signal new data again while one of its signals is still being handled, so a handler
    // that waits there would hear nothing more, pings included.
    if (!drainScheduled_) {
        drainScheduled_ = true;
        QMetaObject::invokeMethod(
            this,
            [this] {
                drainScheduled_ = false;
                drainFrames();
            },
            Qt::QueuedConnection);
    }
}

void ServerLink::readFromSocket() {
    const QByteArray bytes = socket_.readAll();
    cutter_.Append(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
}

std::size_t ServerLink::heldBytes() const {
    return heldPayloadBytes_ + cutter_.BufferedBytes();
}

void ServerLink::holdFramesWhileNested() {
    while (heldBytes() < kMaxHeldBytes && socket_.bytesAvailable() > 0) {
        readFromSocket();
        for (;;) {
            protocol::CutResult cut = cutter_.Next();
            if (cut.kind == protocol::CutResult::Kind::kNeedMore) {
                break;
            }
            if (cut.kind == protocol::CutResult::Kind::kFrame &&
                cut.frame.code == protocol::server_to_client::kPing) {
                if (sink_) {
                    sink_(cut.frame);
                }
                if (!isConnected()) {
                    return;
                }
                continue;
            }
            const bool failed = cut.kind == protocol::CutResult::Kind::kError;
            heldPayloadBytes_ += cut.frame.payload.size();
            held_.push_back(std::move(cut));
            if (failed) {
                // Nothing after an error is a frame; the outer loop closes the link.
                return;
            }
        }
    }
}

void ServerLink::drainFrames() {
    if (draining_) {
        return;
    }
    // The cutter is reset whenever the connection is closed or replaced, so whatever it still
    // holds after a handler returns belongs to the connection that is current now.
    draining_ = true;
    for (;;) {
        protocol::CutResult cut;
        if (!held_.empty()) {
            cut = std::move(held_.front());
            held_.pop_front();
            heldPayloadBytes_ -= cut.frame.payload.size();
        } else {
            cut = cutter_.Next();
        }
        if (cut.kind == protocol::CutResult::Kind::kNeedMore) {
            // Input that waited in the socket while frames were held comes in now.
            if (isConnected() && socket_.bytesAvailable() > 0) {
                readFromSocket();
                continue;
            }
            break;
        }
        if (!deliver(cut)) {
            return;
        }
    }
    draining_ = false;
}

bool ServerLink::deliver(protocol::CutResult& cut) {
    switch (cut.kind) {
        case protocol::CutResult::Kind::kError:
            close();
            ending_ = Ending::Error;
            draining_ = false;
            emit streamRefused(WireText::fromWire(cut.errorText));
            return false;
        case protocol::CutResult::Kind::kTunnelUp:
            if (encrypt_) {
                startEncryption();  // inside the tunnel; tunnelUp() follows the handshake
                return true;
            }
            emit tunnelUp();
            return true;
        case protocol::CutResult::Kind::kFrame:
            if (sink_) {
                sink_(cut.frame);
            }
            return true;
        case protocol::CutResult::Kind::kNeedMore:
            break;
    }
    return true;
}

void ServerLink::onDisconnected() {
    if (closing_) {
        return;
    }
    cutter_.Reset();
    if (handshaking_) {
        reportHandshakeEnd(tr("the server closed the connection during the handshake"));
        return;
    }
    ending_ = Ending::RemoteClosed;
    emit remoteClosed();
}

void ServerLink::onError(QAbstractSocket::SocketError error) {
    // A remote close also arrives as disconnected(), which is where it is handled.
    if (closing_ || error == QAbstractSocket::RemoteHostClosedError) {
        return;
    }
    const QString description = socket_.errorString();
    if (handshaking_) {
        reportHandshakeEnd(description);
        return;
    }
    close();
    ending_ = Ending::Error;
    emit failed(error, description);
}

}  // namespace tavren
