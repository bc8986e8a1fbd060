#pragma once

#include <asio/awaitable.hpp>
#include <asio/ip/tcp.hpp>
#include <asio/steady_timer.hpp>
#include <memory>
#include <optional>
#include <string>

#include "core/protocol/FrameCutter.h"
#include "server/AddressLimiter.h"
#include "server/ClientLink.h"
#include "server/FrameRateLimiter.h"
#include "server/OutgoingQueue.h"
#include "server/ServerContext.h"
#include "server/SessionHandler.h"

namespace tavren::server {

// One client's TCP connection: a reader that cuts frames out of the stream, paces them and hands
// them to the SessionHandler one at a time; a writer that drains the outgoing queue; a pinger;
// and a deadline for logging in. Each is a coroutine holding the connection alive; stop() closes
// the socket and wakes them all, and the connection is gone once the last one has returned.
class Connection : public ClientLink, public std::enable_shared_from_this<Connection> {
  public:
    Connection(asio::ip::tcp::socket socket, ServerContext& context, AddressLimiter::Slot slot,
               std::string peerAddress);

    void start();
    // Closes at once, without writing what is queued. Safe to call more than once.
    void stop(std::string_view reason);

    void send(protocol::CodePair code, std::string_view payload) override;
    void finish(std::string_view reason) override;
    const std::string& peerAddress() const override { return peerAddress_; }

  private:
    asio::awaitable<void> readLoop();
    asio::awaitable<void> handleBufferedFrames();
    asio::awaitable<void> writeLoop();
    asio::awaitable<void> pingLoop();
    asio::awaitable<void> deadlineLoop();
    // False when the client has to go for flooding.
    asio::awaitable<bool> pace();
    void spawn(asio::awaitable<void> loop);

    asio::ip::tcp::socket socket_;
    ServerContext& context_;
    std::optional<AddressLimiter::Slot> slot_;
    std::string peerAddress_;
    asio::steady_timer writeSignal_;
    asio::steady_timer pingTimer_;
    asio::steady_timer deadline_;
    asio::steady_timer paceTimer_;
    OutgoingQueue queue_;
    protocol::FrameCutter cutter_;
    FrameRateLimiter rateLimiter_;
    SessionHandler handler_;
    int unansweredPings_ = 0;
    bool readerBusy_ = false;
    bool finishing_ = false;
    bool stopped_ = false;
};

}  // namespace tavren::server
