#pragma once

#include <asio/awaitable.hpp>
#include <asio/ip/tcp.hpp>
#include <asio/steady_timer.hpp>
#include <deque>
#include <memory>
#include <optional>
#include <string>

#include "core/protocol/FrameCutter.h"
#include "server/base/ServerConfig.h"
#include "server/net/AddressLimiter.h"
#include "server/net/ClientLink.h"
#include "server/net/FrameHandler.h"
#include "server/net/FrameRateLimiter.h"
#include "server/net/MemoryBudget.h"
#include "server/net/OutgoingQueue.h"

namespace tavren::server {

// One client's TCP connection, as coroutines: a reader that cuts frames out of the stream, paces
// them and queues them; a clock for pings, the login deadline and the grace of a closing link;
// and, only while there is work, a handler that gives the queued frames to the session one at a
// time, in order, and a writer that drains the outgoing queue.
// Reading goes on while a request is being handled, so a client that hangs up is noticed at once
// and the work it left behind is skipped. Each coroutine holds the connection alive; stop()
// closes the socket and wakes them all, and the connection is gone once the last has returned.
//
// Memory per connection is bounded and small while idle: bytes are read into one buffer that all
// connections of the thread share and kept only as far as they belong to an unfinished frame;
// frames are short until the password has been accepted; requests waiting to be handled are
// bounded in count and bytes; and everything held counts against the server's memory budget.
class Connection : public ClientLink, public std::enable_shared_from_this<Connection> {
  public:
    Connection(asio::ip::tcp::socket socket, const ServerConfig& config,
               const FrameHandlerFactory& makeHandler, AddressLimiter::Slot slot,
               MemoryBudget& memory, std::string peerAddress, std::string addressGroup);

    void start();
    // Closes at once, without writing what is queued. Safe to call more than once.
    void stop(std::string_view reason);

    void send(protocol::CodePair code, std::string_view payload) override;
    void sendFrame(SharedFrame frame) override;
    void finish(std::string_view reason) override;
    const std::string& peerAddress() const override { return peerAddress_; }
    const std::string& addressGroup() const override { return addressGroup_; }

  private:
    // Frames read but not yet handled; the reader stops reading while this many wait.
    static constexpr std::size_t kInboundLimit = 16;
    // Frames handed to the kernel in one write: a member of a busy channel gets many small
    // frames, and one system call for each would cost more than the frames themselves.
    static constexpr std::size_t kWriteBatch = 64;

    // A frame at least this large leaves the cutter's buffer that large; it is given back once the
    // stream reaches a frame boundary.
    static constexpr std::size_t kLargeFrame = 64 * 1024;

    // Waits for bytes with a plain handler; a coroutine runs only while they are being taken.
    void waitReadable();
    asio::awaitable<void> readBurst();
    // Reads what the socket holds; false when the connection ended.
    asio::awaitable<bool> readAvailable();
    asio::awaitable<void> takeBufferedFrames();
    asio::awaitable<void> handleLoop();
    asio::awaitable<void> waitFor(asio::steady_timer& signal);
    // Writes the next batch of the queue, with a plain handler: a member of a busy channel starts
    // a write for nearly every line, and a coroutine for each would cost more than the write.
    void writeSome();
    // The clock waits with a plain handler, not a coroutine: it is what every idle connection
    // has pending, so it should cost little.
    void scheduleClock();
    void tick(std::chrono::steady_clock::time_point now);
    // Starts the handler or the writer from the event loop when it is not running already.
    void startHandling();
    void startWriting();
    // False when the client has to go for flooding.
    asio::awaitable<bool> pace();
    void spawn(asio::awaitable<void> loop);
    // Brings this connection's share of the memory budget up to date; false when it cannot grow.
    bool chargeMemory();
    asio::steady_timer& madeTimer(std::optional<asio::steady_timer>& timer);
    void logFromPeer(std::string_view line) const;

    asio::ip::tcp::socket socket_;
    const ServerConfig& config_;
    const FrameHandlerFactory& makeHandler_;
    std::optional<AddressLimiter::Slot> slot_;
    std::string peerAddress_;
    std::string addressGroup_;
    MemoryBudget& memory_;
    std::size_t memoryHeld_ = 0;
    asio::steady_timer clock_;  // cancelled to plan the next wake-up again
    // Made the first time the reader has to wait: most connections never do.
    std::optional<asio::steady_timer> paceTimer_;
    std::optional<asio::steady_timer> inboundSpace_;  // cancelled when a frame is taken
    std::chrono::steady_clock::time_point nextPing_;
    std::chrono::steady_clock::time_point loginDeadline_;
    std::chrono::steady_clock::time_point finishDeadline_;
    OutgoingQueue queue_;
    // Made when the first frame waits and given back when the last is taken, so an idle
    // connection holds no block of it.
    std::optional<std::deque<protocol::Frame>> inbound_;
    std::size_t inboundBytes_ = 0;  // payload bytes in inbound_
    protocol::FrameCutter cutter_;
    bool fullPayloadAllowed_ = false;  // the cutter's limit was raised after the password
    bool largeFrameCut_ = false;       // the cutter's buffer grew for a large frame
    FrameRateLimiter rateLimiter_;
    std::unique_ptr<FrameHandler> handler_;  // made in start(), once the link can be shared
    int unansweredPings_ = 0;
    bool readerBusy_ = false;
    bool handling_ = false;
    bool writing_ = false;
    bool loginChecked_ = false;
    bool finishing_ = false;
    bool overflowed_ = false;  // dropped for not reading; the stop follows at once
    bool stopped_ = false;
};

}  // namespace tavren::server
