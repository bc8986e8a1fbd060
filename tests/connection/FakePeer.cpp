#include "FakePeer.h"

#include <algorithm>

#include "core/protocol/Catalogue.h"

namespace tavren::test {

FakePeer::FakePeer() {
    server_.listen(QHostAddress::LocalHost, 0);
    connect(&server_, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket* socket = server_.nextPendingConnection()) {
            sockets_ << socket;
            ++connections_;
            frames_.clear();
            raw_.clear();
            cutter_.Reset();
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] {
                const QByteArray bytes = socket->readAll();
                if (socket != current()) {
                    return;
                }
                raw_ += bytes;
                if (rawOnly_) {
                    return;
                }
                cutter_.Append(
                    std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
                for (auto cut = cutter_.Next(); cut.kind == protocol::CutResult::Kind::kFrame;
                     cut = cutter_.Next()) {
                    frames_.push_back(cut.frame);
                    if (responder_) {
                        responder_(*this, cut.frame);
                    }
                }
            });
        }
    });
}

bool FakePeer::received(protocol::CodePair code) const {
    return std::any_of(frames_.begin(), frames_.end(),
                       [code](const protocol::Frame& frame) { return frame.code == code; });
}

void FakePeer::send(protocol::CodePair code, const std::string& payload) {
    const std::string frame = protocol::EncodeFrame(code, payload);
    sendRaw(QByteArray(frame.data(), static_cast<qsizetype>(frame.size())));
}

void FakePeer::sendRaw(const QByteArray& bytes) {
    if (QTcpSocket* socket = current()) {
        socket->write(bytes);
        socket->flush();
    }
}

void FakePeer::closeCurrent() {
    if (QTcpSocket* socket = current()) {
        socket->disconnectFromHost();
    }
}

void FakePeer::answerLoginWithoutPings(FakePeer& peer, const protocol::Frame& frame) {
    namespace in = protocol::client_to_server;
    namespace out = protocol::server_to_client;
    if (frame.code == in::kVersionBeforeLogin) {
        peer.send(out::kHello, "fake;1.0");
    } else if (frame.code == in::kCredentials) {
        const std::string name = frame.payload.substr(0, frame.payload.find(':'));
        peer.send(out::kAccountRefresh, name + ";0;");
    } else if (frame.code == in::kAccountRefreshOk) {
        peer.send(out::kLoginAccepted, "");
    }
}

}  // namespace tavren::test
