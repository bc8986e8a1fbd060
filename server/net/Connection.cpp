#include "server/net/Connection.h"

#include <sys/socket.h>
#include <algorithm>
#include <array>
#include <asio/co_spawn.hpp>
#include <asio/experimental/as_tuple.hpp>
#include <asio/post.hpp>
#include <asio/use_awaitable.hpp>
#include <asio/write.hpp>
#include <cerrno>
#include <cstring>
#include <vector>

#include "core/protocol/Catalogue.h"
#include "server/base/Log.h"
#include "server/base/Replies.h"

namespace tavren::server {

namespace {

constexpr auto kAwaitResult = asio::experimental::as_tuple(asio::use_awaitable);
// How long a finishing connection may take to read its last frames before it is cut off.
constexpr std::chrono::seconds kFinishGrace{2};
// What one read takes from the kernel at most once the client has logged in; before that, a
// little more than one short frame.
constexpr std::size_t kReadChunk = 64 * 1024;
constexpr std::size_t kSmallestReadChunk = 1024;
// The first byte of a TLS handshake record; no plain frame starts with it.
constexpr unsigned char kTlsHandshakeRecord = 0x16;
// The largest TLS record's payload: one write through TLS takes at most this much of the queue.
constexpr std::size_t kTlsRecord = 16 * 1024;

// One read buffer for every connection of the thread: a read takes what the socket holds and
// hands it to the cutter at once, so an idle connection holds no buffer of its own.
std::array<char, kReadChunk>& sharedReadBuffer() {
    static thread_local std::array<char, kReadChunk> buffer;
    return buffer;
}

// Where queued frames are gathered into one record before TLS encrypts them; shared like the
// read buffer, because a write that has to wait is repeated from the queue, not from here.
std::array<char, kTlsRecord>& sharedTlsWriteBuffer() {
    static thread_local std::array<char, kTlsRecord> buffer;
    return buffer;
}

}  // namespace

Connection::Connection(asio::ip::tcp::socket socket, const ServerConfig& config,
                       const FrameHandlerFactory& makeHandler, AddressLimiter::Slot slot,
                       MemoryBudget& memory, std::string peerAddress, std::string addressGroup,
                       std::shared_ptr<const TlsContext> tls)
    : socket_(std::move(socket)),
      config_(config),
      tlsContext_(std::move(tls)),
      transport_(tlsContext_ ? Transport::kUndecided : Transport::kPlain),
      makeHandler_(makeHandler),
      slot_(std::move(slot)),
      peerAddress_(std::move(peerAddress)),
      addressGroup_(std::move(addressGroup)),
      memory_(memory),
      clock_(socket_.get_executor()),
      queue_(config.outgoingQueueLimit),
      cutter_(std::min(config.maxPayload, config.maxPayloadBeforeLogin)),
      rateLimiter_(config.framesPerSecond, config.floodLimit, FrameRateLimiter::Clock::now()) {}

void Connection::start() {
    handler_ = makeHandler_(*this, weak_from_this());
    asio::error_code ignored;
    socket_.set_option(asio::ip::tcp::no_delay(true), ignored);
    if (config_.socketSendBuffer > 0) {
        socket_.set_option(asio::socket_base::send_buffer_size(config_.socketSendBuffer), ignored);
    }
    logFromPeer("connection from " + peerAddress_);
    const auto now = std::chrono::steady_clock::now();
    nextPing_ = now + config_.pingInterval;
    loginDeadline_ = now + config_.loginTimeout;
    handshakeDeadline_ = now + config_.tls.handshakeTimeout;
    asio::error_code nonBlocking;
    socket_.non_blocking(true, nonBlocking);
    waitReadable();
    scheduleClock();
}

void Connection::spawn(asio::awaitable<void> loop) {
    asio::co_spawn(
        socket_.get_executor(), std::move(loop),
        [self = shared_from_this()](std::exception_ptr failure) {
            if (!failure) {
                return;
            }
            try {
                std::rethrow_exception(failure);
            } catch (const std::exception& error) {
                Log::warn("connection " + self->peerAddress_ + " failed: " + error.what());
            } catch (...) {
                Log::warn("connection " + self->peerAddress_ + " failed");
            }
            self->stop("internal error");
        });
}

void Connection::stop(std::string_view reason) {
    if (stopped_) {
        return;
    }
    stopped_ = true;
    logFromPeer("closed " + peerAddress_ + ": " + std::string(reason));
    if (handler_) {
        handler_->disconnected();
    }
    asio::error_code ignored;
    socket_.shutdown(asio::ip::tcp::socket::shutdown_both, ignored);
    socket_.close(ignored);
    if (inboundSpace_) {
        inboundSpace_->cancel();
    }
    clock_.cancel();
    if (paceTimer_) {
        paceTimer_->cancel();
    }
    slot_.reset();
    // Nothing read or queued from now on counts; the memory itself goes with the connection.
    memory_.resize(memoryHeld_, 0);
}

asio::steady_timer& Connection::madeTimer(std::optional<asio::steady_timer>& timer) {
    if (!timer) {
        timer.emplace(socket_.get_executor());
    }
    return *timer;
}

void Connection::logFromPeer(std::string_view line) const {
    Log::infoFrom(addressGroup_, line);
}

bool Connection::chargeMemory() {
    if (stopped_) {
        return true;
    }
    return memory_.resize(memoryHeld_, cutter_.BufferedBytes() + inboundBytes_ + queue_.bytes());
}

void Connection::send(protocol::CodePair code, std::string_view payload) {
    if (stopped_ || finishing_ || overflowed_) {
        return;
    }
    sendFrame(std::make_shared<const std::string>(protocol::EncodeFrame(code, payload)));
}

void Connection::sendFrame(SharedFrame frame) {
    if (stopped_ || finishing_ || overflowed_) {
        return;
    }
    if (!queue_.push(std::move(frame)) || !chargeMemory()) {
        Log::warn(peerAddress_ + " does not read: " + std::to_string(queue_.size()) +
                  " frames waiting");
        // Stopped from the event loop, not from inside this call: the sender may be walking a
        // channel's members, and a stop now would take this member out of it mid-walk.
        overflowed_ = true;
        asio::post(socket_.get_executor(),
                   [self = shared_from_this()] { self->stop("outgoing queue full"); });
        return;
    }
    startWriting();
}

void Connection::startWriting() {
    // Nothing goes out before the first byte has said whether the link is TLS, nor while the
    // handshake runs; what is queued meanwhile goes once it is done.
    if (writing_ || stopped_ || transport_ == Transport::kUndecided || handshaking_) {
        return;
    }
    writing_ = true;
    if (tls_) {
        // Written from the event loop: by then a fan-out has queued all it had, and the frames
        // go together in one record.
        asio::post(socket_.get_executor(), [self = shared_from_this()] { self->writeTls(); });
        return;
    }
    // Started here: a write never completes inside its own initiation, so the caller (walking a
    // channel's members, say) is never called back from this.
    writeSome();
}

void Connection::startHandling() {
    if (handling_ || stopped_) {
        return;
    }
    handling_ = true;
    asio::post(socket_.get_executor(),
               [self = shared_from_this()] { self->spawn(self->handleLoop()); });
}

void Connection::finish(std::string_view reason) {
    if (stopped_ || finishing_) {
        return;
    }
    finishing_ = true;
    logFromPeer("closing " + peerAddress_ + ": " + std::string(reason));
    if (handler_) {
        handler_->disconnected();
    }
    startWriting();  // to write what is queued, then say so
    if (inboundSpace_) {
        inboundSpace_->cancel();
    }
    finishDeadline_ = std::chrono::steady_clock::now() + kFinishGrace;
    clock_.cancel();
}

void Connection::waitReadable() {
    socket_.async_wait(asio::ip::tcp::socket::wait_read,
                       [self = shared_from_this()](const asio::error_code& error) {
                           if (self->stopped_) {
                               return;
                           }
                           if (error) {
                               self->stop(error.message());
                               return;
                           }
                           if (self->transport_ == Transport::kUndecided && !self->classify()) {
                               return;
                           }
                           if (self->handshaking_) {
                               self->continueHandshake();
                               return;
                           }
                           self->resumeReading();
                       });
}

void Connection::waitWritableThen(void (Connection::*next)()) {
    socket_.async_wait(asio::ip::tcp::socket::wait_write,
                       [self = shared_from_this(), next](const asio::error_code& error) {
                           if (self->stopped_) {
                               return;
                           }
                           if (error) {
                               self->stop(error.message());
                               return;
                           }
                           ((*self).*next)();
                       });
}

bool Connection::classify() {
    unsigned char first = 0;
    const ssize_t peeked = ::recv(socket_.native_handle(), &first, 1, MSG_PEEK | MSG_DONTWAIT);
    if (peeked == 0) {
        stop("closed by the client");
        return false;
    }
    if (peeked < 0) {
        if (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR) {
            waitReadable();
        } else {
            stop(std::strerror(errno));
        }
        return false;
    }
    if (first != kTlsHandshakeRecord) {
        decidePlain();
        return true;
    }
    try {
        tls_ = std::make_unique<TlsSession>(std::move(tlsContext_), socket_.native_handle());
    } catch (const std::bad_alloc&) {
        stop("no memory for TLS");
        return false;
    }
    transport_ = Transport::kTls;
    handshaking_ = true;
    clock_.cancel();  // plans again, now with the handshake's deadline
    return true;
}

void Connection::decidePlain() {
    transport_ = Transport::kPlain;
    tlsContext_.reset();
    if (!queue_.empty()) {
        startWriting();
    }
}

void Connection::continueHandshake() {
    const TlsSession::Result result = tls_->handshake();
    switch (result.status) {
        case TlsSession::Status::kDone:
            handshaking_ = false;
            logFromPeer("encrypted " + peerAddress_ + ": " + tls_->protocol() + " " +
                        tls_->cipher());
            if (!queue_.empty()) {
                startWriting();
            }
            resumeReading();  // the client's first frames may have come with its last flight
            return;
        case TlsSession::Status::kWantRead:
            waitReadable();
            return;
        case TlsSession::Status::kWantWrite:
            waitWritableThen(&Connection::continueHandshake);
            return;
        case TlsSession::Status::kClosed:
            stop("closed during the TLS handshake");
            return;
        case TlsSession::Status::kFailed:
            stop("TLS handshake failed: " + tls_->failure());
            return;
    }
}

void Connection::resumeReading() {
    spawn(readBurst());
}

asio::awaitable<void> Connection::readBurst() {
    auto self = shared_from_this();
    switch (co_await readAvailable()) {
        case ReadEnd::kWaitRead:
            waitReadable();
            break;
        case ReadEnd::kWaitWrite:
            waitWritableThen(&Connection::resumeReading);
            break;
        case ReadEnd::kEnded:
            break;
    }
}

Connection::ReadEnd Connection::readSome(char* data, std::size_t size, std::size_t& count) {
    count = 0;
    if (tls_) {
        const TlsSession::Result result = tls_->read(data, size);
        switch (result.status) {
            case TlsSession::Status::kDone:
                count = result.bytes;
                return ReadEnd::kWaitRead;
            case TlsSession::Status::kWantRead:
                return ReadEnd::kWaitRead;
            case TlsSession::Status::kWantWrite:
                return ReadEnd::kWaitWrite;
            case TlsSession::Status::kClosed:
                stop("closed by the client");
                return ReadEnd::kEnded;
            case TlsSession::Status::kFailed:
                stop("TLS: " + tls_->failure());
                return ReadEnd::kEnded;
        }
    }
    asio::error_code error;
    count = socket_.read_some(asio::buffer(data, size), error);
    if (error == asio::error::would_block || error == asio::error::try_again) {
        count = 0;
        return ReadEnd::kWaitRead;
    }
    if (error) {
        count = 0;
        stop(error == asio::error::eof ? "closed by the client" : error.message());
        return ReadEnd::kEnded;
    }
    return ReadEnd::kWaitRead;
}

asio::awaitable<Connection::ReadEnd> Connection::readAvailable() {
    // Until the password is accepted a read takes little more than one short frame, so that what
    // an unknown client can make the server hold stays small.
    while (!stopped_) {
        const std::size_t chunk = fullPayloadAllowed_
                                      ? kReadChunk
                                      : std::clamp<std::size_t>(config_.maxPayloadBeforeLogin + 10,
                                                                kSmallestReadChunk, kReadChunk);
        auto& buffer = sharedReadBuffer();
        std::size_t count = 0;
        const ReadEnd end = readSome(buffer.data(), chunk, count);
        if (count == 0) {
            co_return end;
        }
        if (finishing_) {
            // Closing: what the client still sends is read and thrown away, so that our close
            // ends with a FIN; closing on unread bytes would send a reset, and a reset may
            // discard the last notice before the client has read it.
            continue;
        }
        cutter_.Append(std::string_view(buffer.data(), count));
        if (!chargeMemory()) {
            Log::warn("memory budget spent: dropped " + peerAddress_ + " holding " +
                      std::to_string(cutter_.BufferedBytes() + inboundBytes_) + " bytes");
            stop("server memory budget spent");
            co_return ReadEnd::kEnded;
        }
        co_await takeBufferedFrames();
    }
    co_return ReadEnd::kEnded;
}

asio::awaitable<void> Connection::takeBufferedFrames() {
    while (!stopped_ && !finishing_) {
        if (!fullPayloadAllowed_ && handler_->authenticated()) {
            cutter_.SetMaxPayloadLength(config_.maxPayload);
            fullPayloadAllowed_ = true;
        }
        protocol::CutResult cut = cutter_.Next();
        if (cut.kind == protocol::CutResult::Kind::kNeedMore) {
            if (largeFrameCut_ && cutter_.BufferedBytes() == 0) {
                // At a frame boundary: the room the large frame took goes back to the system.
                cutter_.Reset();
                largeFrameCut_ = false;
            }
            co_return;
        }
        if (cut.kind == protocol::CutResult::Kind::kError) {
            // The stream has lost its frame boundary; nothing after this point can be trusted.
            logFromPeer("bad frame from " + peerAddress_ + ": " + cut.errorText);
            stop("bad frame");
            co_return;
        }
        if (cut.kind != protocol::CutResult::Kind::kFrame) {
            continue;
        }
        largeFrameCut_ = largeFrameCut_ || cut.frame.payload.size() >= kLargeFrame;
        if (!co_await pace()) {
            co_return;  // dropped for flooding, or stopped while waiting
        }
        if (cut.frame.code == protocol::client_to_server::kPong) {
            unansweredPings_ = 0;
            continue;
        }
        // The reader waits here while the handler works through a backlog, so that a client
        // cannot queue up unbounded work; TCP then slows the client down. Meanwhile "Pong"s wait
        // unread, and the pinger must not blame the client for that.
        readerBusy_ = true;
        const std::size_t size = cut.frame.payload.size();
        const auto waiting = [this] { return inbound_ ? inbound_->size() : std::size_t{0}; };
        while ((waiting() >= kInboundLimit ||
                (waiting() > 0 && inboundBytes_ + size > config_.inboundByteLimit)) &&
               !stopped_ && !finishing_) {
            co_await waitFor(madeTimer(inboundSpace_));
        }
        readerBusy_ = false;
        inboundBytes_ += size;
        if (!inbound_) {
            inbound_.emplace();
        }
        inbound_->push_back(std::move(cut.frame));
        startHandling();
    }
}

asio::awaitable<void> Connection::handleLoop() {
    auto self = shared_from_this();
    while (!stopped_ && !finishing_ && inbound_ && !inbound_->empty()) {
        protocol::Frame frame = std::move(inbound_->front());
        inbound_->pop_front();
        if (inbound_->empty()) {
            inbound_.reset();
        }
        inboundBytes_ -= frame.payload.size();
        chargeMemory();  // shrinking always succeeds
        if (inboundSpace_) {
            inboundSpace_->cancel_one();
        }
        co_await handler_->handle(std::move(frame));
    }
    handling_ = false;
}

asio::awaitable<void> Connection::waitFor(asio::steady_timer& signal) {
    signal.expires_at(asio::steady_timer::time_point::max());
    co_await signal.async_wait(kAwaitResult);
}

asio::awaitable<bool> Connection::pace() {
    const auto verdict = rateLimiter_.admit(FrameRateLimiter::Clock::now());
    if (verdict.kind == FrameRateLimiter::Verdict::Kind::kDrop) {
        logFromPeer(peerAddress_ + " is flooding");
        send(replies::kNotice, "You have been disconnected for sending too fast.");
        finish("flooding");
        co_return false;
    }
    if (verdict.kind == FrameRateLimiter::Verdict::Kind::kDelay) {
        readerBusy_ = true;  // as while waiting for the handler
        asio::steady_timer& pause = madeTimer(paceTimer_);
        pause.expires_after(verdict.delay);
        co_await pause.async_wait(kAwaitResult);
        readerBusy_ = false;
    }
    co_return !stopped_;
}

void Connection::writeSome() {
    if (stopped_) {
        return;
    }
    if (queue_.empty()) {
        if (finishing_) {
            // Everything is written: say so, and let the client close its end (the reader
            // notices) or the grace period run out.
            asio::error_code ignored;
            socket_.shutdown(asio::ip::tcp::socket::shutdown_send, ignored);
        }
        writing_ = false;  // the next frame queued starts a write again
        return;
    }
    // The frames stay in the queue, where nothing moves them, until they are written.
    const std::size_t count = std::min(queue_.size(), kWriteBatch);
    std::vector<asio::const_buffer> buffers;
    buffers.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        buffers.push_back(asio::buffer(queue_.at(i)));
    }
    asio::async_write(
        socket_, std::move(buffers),
        [self = shared_from_this(), count](const asio::error_code& error, std::size_t) {
            if (self->stopped_) {
                return;
            }
            if (error) {
                self->stop(error.message());
                return;
            }
            self->queue_.pop(count);
            self->chargeMemory();
            self->writeSome();
        });
}

void Connection::writeTls() {
    if (stopped_) {
        return;
    }
    auto& record = sharedTlsWriteBuffer();
    while (!queue_.empty()) {
        const std::size_t wanted = tlsRetryLength_ != 0 ? tlsRetryLength_ : record.size();
        std::size_t length = 0;
        std::size_t offset = tlsFrontOffset_;
        for (std::size_t i = 0; i < queue_.size() && length < wanted; ++i) {
            const std::string& frame = queue_.at(i);
            const std::size_t take = std::min(frame.size() - offset, wanted - length);
            std::memcpy(record.data() + length, frame.data() + offset, take);
            length += take;
            offset = 0;
        }
        const TlsSession::Result result = tls_->write(record.data(), length);
        if (result.status == TlsSession::Status::kDone) {
            tlsRetryLength_ = 0;
            consumeWritten(result.bytes);
            continue;
        }
        if (result.status == TlsSession::Status::kWantWrite) {
            // OpenSSL holds the record it made; the repeat must offer the same bytes again.
            tlsRetryLength_ = length;
            chargeMemory();
            waitWritableThen(&Connection::writeTls);
            return;
        }
        stop(result.status == TlsSession::Status::kWantRead ? "TLS wanted to read while writing"
                                                            : "TLS: " + tls_->failure());
        return;
    }
    chargeMemory();
    if (finishing_) {
        tls_->shutdown();
        asio::error_code ignored;
        socket_.shutdown(asio::ip::tcp::socket::shutdown_send, ignored);
    }
    writing_ = false;
}

void Connection::consumeWritten(std::size_t count) {
    while (count > 0 && !queue_.empty()) {
        const std::size_t rest = queue_.front().size() - tlsFrontOffset_;
        if (count < rest) {
            tlsFrontOffset_ += count;
            return;
        }
        count -= rest;
        tlsFrontOffset_ = 0;
        queue_.pop(1);
    }
}

void Connection::scheduleClock() {
    auto wake = nextPing_;
    if (!loginChecked_) {
        wake = std::min(wake, loginDeadline_);
    }
    if (handshaking_) {
        wake = std::min(wake, handshakeDeadline_);
    }
    if (finishing_) {
        wake = std::min(wake, finishDeadline_);
    }
    clock_.expires_at(wake);
    clock_.async_wait([self = shared_from_this()](const asio::error_code& error) {
        if (self->stopped_) {
            return;
        }
        if (!error) {
            self->tick(std::chrono::steady_clock::now());
        }
        if (!self->stopped_) {
            self->scheduleClock();  // cancelled by finish(): plan again with its deadline
        }
    });
}

void Connection::tick(std::chrono::steady_clock::time_point now) {
    if (finishing_) {
        if (now >= finishDeadline_) {
            stop("did not take its last frames");
        }
        return;  // no pings for a closing link
    }
    if (handshaking_ && now >= handshakeDeadline_) {
        stop("no TLS handshake in time");
        return;
    }
    if (!loginChecked_ && now >= loginDeadline_) {
        loginChecked_ = true;
        if (transport_ == Transport::kUndecided) {
            decidePlain();  // silent all along: told in the plain protocol
        }
        if (!handler_->loggedIn()) {
            send(replies::kNotice, "You did not log in in time. Please connect again.");
            finish("login time-out");
            return;
        }
    }
    if (now < nextPing_) {
        return;
    }
    nextPing_ = now + config_.pingInterval;
    if (readerBusy_) {
        // The client's "Pong"s wait unread behind frames we hold back; not its fault.
        send(protocol::server_to_client::kPing, replies::kPing);
        return;
    }
    if (unansweredPings_ >= config_.pingMisses) {
        stop("no answer to " + std::to_string(unansweredPings_) + " pings");
        return;
    }
    send(protocol::server_to_client::kPing, replies::kPing);
    ++unansweredPings_;
}

}  // namespace tavren::server
