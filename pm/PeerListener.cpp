#include "pm/PeerListener.h"

#include <QSslSocket>
#include <QTimer>
#include <algorithm>

#include "pm/PeerAddress.h"
#include "pm/PeerCertificate.h"
#include "pm/PeerTlsHandshake.h"

namespace tavren {

PeerListener::PeerListener(QObject* parent) : QObject(parent) {
    connect(&server_, &QTcpServer::newConnection, this, &PeerListener::onNewConnection);
}

PeerListener::~PeerListener() {
    stop();
}

std::optional<quint16> PeerListener::listenInRange(int lower, int upper) {
    stop();
    expected_.clear();
    own_.reset();
    fingerprint_.clear();
    const int first = std::clamp(std::min(lower, upper), 1, 65535);
    const int last = std::clamp(std::max(lower, upper), 1, 65535);
    for (int port = first; port <= last; ++port) {
        if (server_.listen(QHostAddress::Any, static_cast<quint16>(port))) {
            return static_cast<quint16>(port);
        }
    }
    return std::nullopt;
}

void PeerListener::expect(const QHostAddress& peer, std::shared_ptr<const PeerCertificate> own,
                          const QString& fingerprint) {
    expected_ = peer;
    own_ = std::move(own);
    fingerprint_ = fingerprint;
    std::vector<Pending> held;
    held.swap(pending_);
    for (const Pending& each : held) {
        release(each);
    }
    for (const Pending& each : held) {
        // After a take the listener is closed, and the rest are refused.
        if (listening() && PeerAddress::same(each.socket->peerAddress(), expected_)) {
            admit(each.socket);
        } else {
            refuse(each.socket);
        }
    }
}

void PeerListener::stop() {
    server_.close();
    std::vector<Pending> pending;
    pending.swap(pending_);
    for (const Pending& each : pending) {
        release(each);
        refuse(each.socket);
    }
}

void PeerListener::onNewConnection() {
    while (QTcpSocket* next = server_.nextPendingConnection()) {
        auto* socket = static_cast<QSslSocket*>(next);  // PeerServer makes only these
        socket->setParent(nullptr);
        if (!listening() || static_cast<int>(pending_.size()) >= kMaxHeld) {
            refuse(socket);
        } else if (expected_.isNull()) {
            hold(socket);
        } else if (PeerAddress::same(socket->peerAddress(), expected_)) {
            admit(socket);
        } else {
            refuse(socket);
        }
    }
}

void PeerListener::hold(QSslSocket* socket) {
    auto* timer = new QTimer(this);
    timer->setSingleShot(true);
    connect(timer, &QTimer::timeout, this, [this, socket] {
        release(socket);
        refuse(socket);
    });
    timer->start(kHoldMs);
    pending_.push_back({socket, timer, nullptr});
}

void PeerListener::admit(QSslSocket* socket) {
    if (!encrypting()) {
        take(socket);
        return;
    }
    auto* handshake =
        new PeerTlsHandshake(*socket, PeerTlsHandshake::Role::Server, own_, fingerprint_, this);
    connect(handshake, &PeerTlsHandshake::secured, this, [this, socket] {
        release(socket);
        take(socket);
    });
    connect(handshake, &PeerTlsHandshake::refused, this, [this, socket](const QString& reason) {
        release(socket);
        const QHostAddress from = socket->peerAddress();
        socket->abort();
        socket->deleteLater();
        emit impostorRefused(from, reason);
    });
    pending_.push_back({socket, nullptr, handshake});
    handshake->start();
}

void PeerListener::take(QSslSocket* socket) {
    // One peer per listener: nobody else gets in after it.
    server_.close();
    std::vector<Pending> others;
    others.swap(pending_);
    for (const Pending& each : others) {
        release(each);
        if (each.socket != socket) {
            refuse(each.socket);
        }
    }
    socket->setReadBufferSize(0);  // the owner sets what it wants
    emit peerConnected(socket);
}

void PeerListener::refuse(QSslSocket* socket) {
    const QHostAddress from = socket->peerAddress();
    socket->abort();
    socket->deleteLater();
    emit strangerRefused(from);
}

void PeerListener::release(QSslSocket* socket) {
    const auto found =
        std::find_if(pending_.begin(), pending_.end(),
                     [socket](const Pending& each) { return each.socket == socket; });
    if (found != pending_.end()) {
        const Pending gone = *found;
        pending_.erase(found);
        release(gone);
    }
}

void PeerListener::release(const Pending& pending) {
    if (pending.timer != nullptr) {
        pending.timer->stop();
        pending.timer->deleteLater();
    }
    if (pending.handshake != nullptr) {
        pending.handshake->disconnect();
        pending.handshake->deleteLater();
    }
}

}  // namespace tavren
