#include "pm/PeerListener.h"

#include <QTcpSocket>
#include <QTimer>
#include <algorithm>

#include "pm/PeerAddress.h"

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
    const int first = std::clamp(std::min(lower, upper), 1, 65535);
    const int last = std::clamp(std::max(lower, upper), 1, 65535);
    for (int port = first; port <= last; ++port) {
        if (server_.listen(QHostAddress::Any, static_cast<quint16>(port))) {
            return static_cast<quint16>(port);
        }
    }
    return std::nullopt;
}

void PeerListener::expect(const QHostAddress& peer) {
    expected_ = peer;
    std::vector<Held> held;
    held.swap(held_);
    for (const Held& each : held) {
        delete each.timer;
        // After a take the listener is closed, and the rest are refused.
        if (listening() && PeerAddress::same(each.socket->peerAddress(), expected_)) {
            take(each.socket);
        } else {
            refuse(each.socket);
        }
    }
}

void PeerListener::stop() {
    server_.close();
    for (const Held& each : held_) {
        delete each.timer;
        refuse(each.socket);
    }
    held_.clear();
}

void PeerListener::onNewConnection() {
    while (QTcpSocket* socket = server_.nextPendingConnection()) {
        socket->setParent(nullptr);
        if (!listening()) {
            refuse(socket);
        } else if (!expected_.isNull()) {
            if (PeerAddress::same(socket->peerAddress(), expected_)) {
                take(socket);
            } else {
                refuse(socket);
            }
        } else if (static_cast<int>(held_.size()) >= kMaxHeld) {
            refuse(socket);
        } else {
            auto* timer = new QTimer(this);
            timer->setSingleShot(true);
            connect(timer, &QTimer::timeout, this, [this, socket] {
                const auto found =
                    std::find_if(held_.begin(), held_.end(),
                                 [socket](const Held& h) { return h.socket == socket; });
                if (found != held_.end()) {
                    found->timer->deleteLater();
                    held_.erase(found);
                    refuse(socket);
                }
            });
            timer->start(kHoldMs);
            held_.push_back({socket, timer});
        }
    }
}

void PeerListener::take(QTcpSocket* socket) {
    // One peer per listener: nobody else gets in after it.
    server_.close();
    for (const Held& each : held_) {
        delete each.timer;
        if (each.socket != socket) {
            refuse(each.socket);
        }
    }
    held_.clear();
    emit peerConnected(socket);
}

void PeerListener::refuse(QTcpSocket* socket) {
    const QHostAddress from = socket->peerAddress();
    socket->abort();
    socket->deleteLater();
    emit strangerRefused(from);
}

}  // namespace tavren
