#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QTcpServer>
#include <QTcpSocket>
#include <functional>
#include <string>
#include <vector>

#include "core/protocol/FrameCutter.h"

namespace tavren::test {

// A scripted stand-in for the server (or a proxy) on a loopback port: records what the client
// sends and answers only what the test tells it to. For behaviour a correct server never shows.
class FakePeer : public QObject {
    Q_OBJECT
  public:
    using Responder = std::function<void(FakePeer&, const protocol::Frame&)>;

    FakePeer();

    quint16 port() const { return server_.serverPort(); }
    int connections() const { return connections_; }
    QTcpSocket* current() const { return sockets_.isEmpty() ? nullptr : sockets_.last(); }

    // Frames the client sent on the current connection, and every byte it sent there.
    const std::vector<protocol::Frame>& frames() const { return frames_; }
    QByteArray raw() const { return raw_; }
    bool received(protocol::CodePair code) const;

    void setResponder(Responder responder) { responder_ = std::move(responder); }
    // Skip frame cutting: the first bytes are a proxy request, not frames.
    void setRawOnly(bool on) { rawOnly_ = on; }

    void send(protocol::CodePair code, const std::string& payload);
    void sendRaw(const QByteArray& bytes);
    void closeCurrent();

    // Answers the login handshake like a server would, but never pings.
    static void answerLoginWithoutPings(FakePeer& peer, const protocol::Frame& frame);

  private:
    QTcpServer server_;
    QList<QTcpSocket*> sockets_;
    int connections_ = 0;
    protocol::FrameCutter cutter_;
    std::vector<protocol::Frame> frames_;
    QByteArray raw_;
    Responder responder_;
    bool rawOnly_ = false;
};

}  // namespace tavren::test
