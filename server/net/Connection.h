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
#include "server/net/TlsSession.h"

namespace tavren::server {

// One client's TCP connection, as coroutines: a reader that cuts frames out of the stream, paces
// them and queues them; a clock for pings, the login deadline and the grace of a closing link;
// and, only while there is work, a handler that gives the queued frames to the session one at a
// time, in order, and a writer that drains the outgoing queue.
// Reading goes on while a request is being handled, so a client that hangs up is noticed at once
// and the work it left behind is skipped. Each coroutine holds the connection alive; stop()
// closes the socket and wakes them all, and the connection is gone once the last has returned.
//
// With TLS offered (a context given), the first byte the client sends decides: a TLS handshake
// record makes the connection encrypted, anything else is the plain protocol as it always was.
// The handshake must be done within `tls.handshakeTimeout` of the connection's start. TLS runs
// over the same non-blocking socket (TlsSession): reading and the clock are as for plain links;
// writing copies up to one record's worth of queued frames into the thread's scratch buffer,
// so that a member of a busy channel gets few large records instead of one per line.
//
// Memory per connection is bounded and small while idle: bytes are read into one buffer that all
// connections of the thread share and kept only as far as they belong to an unfinished frame;
// frames are short until the password has been accepted; requests waiting to be handled are
// bounded in count and bytes; and everything held counts against the server's memory budget.
class Connection : public ClientLink, public std::enable_shared_from_this<Connection> {
  public:
    Connection(asio::ip::tcp::socket socket, const ServerConfig& config,
               const FrameHandlerFactory& makeHandler, AddressLimiter::Slot slot,
               MemoryBudget& memory, std::string peerAddress, std::string addressGroup,
               std::shared_ptr<const TlsContext> tls = nullptr);

    void start();
    // Closes at once, without writing what is queued. Safe to call more than once.
    void stop(std::string_view reason);

    void send(protocol::CodePair code, std::string_view payload) override;
    void sendFrame(SharedFrame frame) override;
    void finish(std::string_view reason) override;
    const std::string& peerAddress() const override { return peerAddress_; }
    const std::string& addressGroup() const override { return addressGroup_; }
    bool encrypted() const override { return tls_ && !handshaking_; }

  private:
    // Frames read but not yet handled; the reader stops reading while this many wait.
    static constexpr std::size_t kInboundLimit = 16;
    // Frames handed to the kernel in one write: a member of a busy channel gets many small
    // frames, and one system call for each would cost more than the frames themselves.
    static constexpr std::size_t kWriteBatch = 64;

    // A frame at least this large leaves the cutter's buffer that large; it is given back once the
    // stream reaches a frame boundary.
    static constexpr std::size_t kLargeFrame = 64 * 1024;

    enum class Transport { kUndecided, kPlain, kTls };
    // What a read ended on: nothing more for now, TLS needing to write first, or the end.
    enum class ReadEnd { kWaitRead, kWaitWrite, kEnded };

    // Waits for bytes with a plain handler; a coroutine runs only while they are being taken.
    void waitReadable();
    void waitWritableThen(void (Connection::*next)());
    // Looks at the first byte without taking it; false when it is not there yet (or the
    // connection ended).
    bool classify();
    void decidePlain();
    void continueHandshake();
    void resumeReading();
    asio::awaitable<void> readBurst();
    // Reads what the socket holds.
    asio::awaitable<ReadEnd> readAvailable();
    // One read from the socket or through TLS; kWaitRead/kWaitWrite with `count` 0 when nothing
    // came, kEnded when the connection ended (stopped here).
    ReadEnd readSome(char* data, std::size_t size, std::size_t& count);
    asio::awaitable<void> takeBufferedFrames();
    asio::awaitable<void> handleLoop();
    asio::awaitable<void> waitFor(asio::steady_timer& signal);
    // Writes the next batch of the queue, with a plain handler: a member of a busy channel starts
    // a write for nearly every line, and a coroutine for each would cost more than the write.
    void writeSome();
    // The same through TLS: records of up to 16 KiB from the queue, until the socket is full.
    void writeTls();
    // Takes `count` written bytes off the front of the queue.
    void consumeWritten(std::size_t count);
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
    std::shared_ptr<const TlsContext> tlsContext_;  // until the first byte has decided
    std::unique_ptr<TlsSession> tls_;
    Transport transport_;
    bool handshaking_ = false;
    std::chrono::steady_clock::time_point handshakeDeadline_;
    std::size_t tlsFrontOffset_ = 0;  // bytes of the queue's first frame already written
    std::size_t tlsRetryLength_ = 0;  // a write that waits for the socket repeats this many
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
