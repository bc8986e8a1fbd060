#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/protocol/CodePair.h"
#include "core/protocol/Frame.h"
#include "core/protocol/FrameCutter.h"

typedef struct ssl_st SSL;
typedef struct ssl_ctx_st SSL_CTX;

namespace tavren::bench {

// One loopback client socket, non-blocking, with its own frame cutter. Sending waits for room in
// the kernel buffer; reading either waits for the next frame (setup) or takes what has arrived
// (the measuring loop, driven by epoll). Encrypted, TLS runs over the same socket (any
// certificate is taken: the benchmark measures the cost, not the trust).
class BenchSocket {
  public:
    explicit BenchSocket(std::uint16_t port, bool encrypted = false);
    ~BenchSocket();
    BenchSocket(const BenchSocket&) = delete;
    BenchSocket& operator=(const BenchSocket&) = delete;

    int fd() const { return fd_; }
    void send(protocol::CodePair code, std::string_view payload);
    void sendRaw(std::string_view bytes);
    // The next frame, waiting up to `timeout`; throws when the server closed or nothing came.
    protocol::Frame next(std::chrono::milliseconds timeout = std::chrono::seconds(30));
    // Frames until one with `code` arrives, which is returned.
    protocol::Frame skipTo(protocol::CodePair code);
    // Hands every whole frame already cut or waiting in the kernel to `onFrame`, in order, and
    // returns when nothing more is waiting. Throws when the server closed.
    template <typename OnFrame>
    void drain(OnFrame&& onFrame) {
        do {
            for (auto cut = cutter_.Next(); cut.kind != protocol::CutResult::Kind::kNeedMore;
                 cut = cutter_.Next()) {
                if (cut.kind == protocol::CutResult::Kind::kFrame) {
                    onFrame(cut.frame);
                }
            }
        } while (readSome());
    }

  private:
    // False when nothing more is waiting.
    bool readSome();
    bool waiting() const;

    int fd_ = -1;
    SSL* tls_ = nullptr;
    protocol::FrameCutter cutter_;
};

}  // namespace tavren::bench
