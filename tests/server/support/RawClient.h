#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/protocol/CodePair.h"
#include "core/protocol/Frame.h"
#include "core/protocol/FrameCutter.h"

typedef struct ssl_st SSL;
typedef struct ssl_ctx_st SSL_CTX;

namespace tavren::test {

// A blocking loopback client that speaks frames byte for byte, so tests can say exactly what a
// well-behaved or a hostile client sends. Pings are answered with "Pong" and skipped unless
// told otherwise.
class RawClient {
  public:
    // `receiveBuffer` > 0 shrinks the kernel receive buffer (set before connecting). A
    // `sourceAddress` other than 127.0.0.1 (any of 127.0.0.0/8) makes the client another host to
    // the server's per-address limits.
    explicit RawClient(std::uint16_t port, int receiveBuffer = 0,
                       const char* sourceAddress = nullptr);
    ~RawClient();
    RawClient(const RawClient&) = delete;
    RawClient& operator=(const RawClient&) = delete;

    // Runs a TLS handshake on the connection (trusting any certificate: tests compare its
    // fingerprint themselves); from then on frames travel encrypted. Returns the server
    // certificate's SHA-256 fingerprint, or nothing when the handshake failed.
    std::optional<std::string> startTls();
    std::string tlsProtocol() const;

    void send(protocol::CodePair code, std::string_view payload);
    void sendRaw(std::string_view bytes);

    // The next frame that is not a ping, or nothing on time-out or when the server closed.
    std::optional<protocol::Frame> next(
        std::chrono::milliseconds timeout = std::chrono::seconds(5));
    // The next frame, which must carry `code`; records a test failure otherwise.
    protocol::Frame expect(protocol::CodePair code,
                           std::chrono::milliseconds timeout = std::chrono::seconds(5));
    // Reads and throws away frames until the server closes; false if it has not closed in time.
    bool waitClosed(std::chrono::milliseconds timeout = std::chrono::seconds(5));
    // Reads and throws away whatever comes (a TLS alert, say) until the server closes.
    bool waitHangUp(std::chrono::milliseconds timeout = std::chrono::seconds(5));
    // True once the server has closed the connection (as seen by the last read).
    bool closed() const { return closed_; }

    void setAnswerPings(bool answer) { answerPings_ = answer; }
    // Frames with this code are skipped like pings from now on (the online count, say, which
    // arrives whenever anybody logs in or out).
    void ignore(protocol::CodePair code) { ignored_.push_back(code); }
    int pingsSeen() const { return pingsSeen_; }

  private:
    // One read into `buffer`; <= 0 when the server closed or the link failed.
    long receive(char* buffer, std::size_t size);

    int fd_ = -1;
    SSL_CTX* tlsContext_ = nullptr;
    SSL* tls_ = nullptr;
    protocol::FrameCutter cutter_;
    std::vector<protocol::CodePair> ignored_;
    bool answerPings_ = true;
    bool closed_ = false;
    int pingsSeen_ = 0;
};

}  // namespace tavren::test
