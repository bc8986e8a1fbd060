#include "server/net/Connection.h"

#include <algorithm>
#include <array>
#include <asio/co_spawn.hpp>
#include <asio/experimental/as_tuple.hpp>
#include <asio/post.hpp>
#include <asio/use_awaitable.hpp>
#include <asio/write.hpp>
#include <vector>

#include "core/protocol/Catalogue.h"
#include "server/base/Log.h"
#include "server/base/Replies.h"

namespace tavren::server {

namespace {

constexpr auto kAwaitResult = asio::experimental::as_tuple(asio::use_awaitable);
// How long a finishing connection may take to read its last frames before it is cut off.
constexpr std::chrono::seconds kFinishGrace{2};

}  // namespace

Connection::Connection(asio::ip::tcp::socket socket, const ServerConfig& config,
                       const FrameHandlerFactory& makeHandler, AddressLimiter::Slot slot,
                       std::string peerAddress)
    : socket_(std::move(socket)),
      config_(config),
      makeHandler_(makeHandler),
      slot_(std::move(slot)),
      peerAddress_(std::move(peerAddress)),
      writeSignal_(socket_.get_executor()),
      pingTimer_(socket_.get_executor()),
      deadline_(socket_.get_executor()),
      paceTimer_(socket_.get_executor()),
      inboundReady_(socket_.get_executor()),
      inboundSpace_(socket_.get_executor()),
      queue_(config.outgoingQueueLimit),
      cutter_(config.maxPayload),
      rateLimiter_(config.framesPerSecond, config.floodLimit, FrameRateLimiter::Clock::now()) {}

void Connection::start() {
    handler_ = makeHandler_(*this, weak_from_this());
    asio::error_code ignored;
    socket_.set_option(asio::ip::tcp::no_delay(true), ignored);
    if (config_.socketSendBuffer > 0) {
        socket_.set_option(asio::socket_base::send_buffer_size(config_.socketSendBuffer), ignored);
    }
    Log::info("connection from " + peerAddress_);
    spawn(readLoop());
    spawn(handleLoop());
    spawn(writeLoop());
    spawn(pingLoop());
    spawn(deadlineLoop());
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
    Log::info("closed " + peerAddress_ + ": " + std::string(reason));
    if (handler_) {
        handler_->disconnected();
    }
    asio::error_code ignored;
    socket_.shutdown(asio::ip::tcp::socket::shutdown_both, ignored);
    socket_.close(ignored);
    writeSignal_.cancel();
    inboundReady_.cancel();
    inboundSpace_.cancel();
    pingTimer_.cancel();
    deadline_.cancel();
    paceTimer_.cancel();
    slot_.reset();
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
    if (!queue_.push(std::move(frame))) {
        Log::warn(peerAddress_ + " does not read: " + std::to_string(queue_.size()) +
                  " frames waiting");
        // Stopped from the event loop, not from inside this call: the sender may be walking a
        // channel's members, and a stop now would take this member out of it mid-walk.
        overflowed_ = true;
        asio::post(socket_.get_executor(),
                   [self = shared_from_this()] { self->stop("outgoing queue full"); });
        return;
    }
    writeSignal_.cancel_one();
}

void Connection::finish(std::string_view reason) {
    if (stopped_ || finishing_) {
        return;
    }
    finishing_ = true;
    Log::info("closing " + peerAddress_ + ": " + std::string(reason));
    if (handler_) {
        handler_->disconnected();
    }
    writeSignal_.cancel_one();
    inboundReady_.cancel();
    inboundSpace_.cancel();
    deadline_.expires_after(kFinishGrace);
}

asio::awaitable<void> Connection::readLoop() {
    auto self = shared_from_this();
    std::array<char, 8192> buffer;
    while (!stopped_) {
        const auto [error, count] =
            co_await socket_.async_read_some(asio::buffer(buffer), kAwaitResult);
        if (stopped_) {
            co_return;
        }
        if (error) {
            stop(error == asio::error::eof ? "closed by the client" : error.message());
            co_return;
        }
        if (finishing_) {
            // Closing: what the client still sends is read and thrown away, so that our close
            // ends with a FIN; closing on unread bytes would send a reset, and a reset may
            // discard the last notice before the client has read it.
            continue;
        }
        cutter_.Append(std::string_view(buffer.data(), count));
        co_await takeBufferedFrames();
    }
}

asio::awaitable<void> Connection::takeBufferedFrames() {
    while (!stopped_ && !finishing_) {
        protocol::CutResult cut = cutter_.Next();
        if (cut.kind == protocol::CutResult::Kind::kNeedMore) {
            co_return;
        }
        if (cut.kind == protocol::CutResult::Kind::kError) {
            // The stream has lost its frame boundary; nothing after this point can be trusted.
            Log::warn("bad frame from " + peerAddress_ + ": " + cut.errorText);
            stop("bad frame");
            co_return;
        }
        if (cut.kind != protocol::CutResult::Kind::kFrame) {
            continue;
        }
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
        while (inbound_.size() >= kInboundLimit && !stopped_ && !finishing_) {
            co_await waitFor(inboundSpace_);
        }
        readerBusy_ = false;
        inbound_.push_back(std::move(cut.frame));
        inboundReady_.cancel_one();
    }
}

asio::awaitable<void> Connection::handleLoop() {
    auto self = shared_from_this();
    while (!stopped_ && !finishing_) {
        if (inbound_.empty()) {
            co_await waitFor(inboundReady_);
            continue;
        }
        protocol::Frame frame = std::move(inbound_.front());
        inbound_.pop_front();
        inboundSpace_.cancel_one();
        co_await handler_->handle(std::move(frame));
    }
}

asio::awaitable<void> Connection::waitFor(asio::steady_timer& signal) {
    signal.expires_at(asio::steady_timer::time_point::max());
    co_await signal.async_wait(kAwaitResult);
}

asio::awaitable<bool> Connection::pace() {
    const auto verdict = rateLimiter_.admit(FrameRateLimiter::Clock::now());
    if (verdict.kind == FrameRateLimiter::Verdict::Kind::kDrop) {
        Log::warn(peerAddress_ + " is flooding");
        send(replies::kNotice, "You have been disconnected for sending too fast.");
        finish("flooding");
        co_return false;
    }
    if (verdict.kind == FrameRateLimiter::Verdict::Kind::kDelay) {
        readerBusy_ = true;  // as while waiting for the handler
        paceTimer_.expires_after(verdict.delay);
        co_await paceTimer_.async_wait(kAwaitResult);
        readerBusy_ = false;
    }
    co_return !stopped_;
}

asio::awaitable<void> Connection::writeLoop() {
    auto self = shared_from_this();
    std::vector<asio::const_buffer> buffers;
    buffers.reserve(kWriteBatch);
    while (!stopped_) {
        if (queue_.empty()) {
            if (finishing_) {
                // Everything is written: say so, and let the client close its end (the reader
                // notices) or the grace period run out.
                asio::error_code ignored;
                socket_.shutdown(asio::ip::tcp::socket::shutdown_send, ignored);
                co_return;
            }
            writeSignal_.expires_at(asio::steady_timer::time_point::max());
            co_await writeSignal_.async_wait(kAwaitResult);
            continue;
        }
        // The frames stay in the queue, where nothing moves them, until they are written.
        const std::size_t count = std::min(queue_.size(), kWriteBatch);
        buffers.clear();
        for (std::size_t i = 0; i < count; ++i) {
            buffers.push_back(asio::buffer(queue_.at(i)));
        }
        const auto [error, written] = co_await asio::async_write(socket_, buffers, kAwaitResult);
        if (stopped_) {
            co_return;
        }
        if (error) {
            stop(error.message());
            co_return;
        }
        queue_.pop(count);
    }
}

asio::awaitable<void> Connection::pingLoop() {
    auto self = shared_from_this();
    while (!stopped_) {
        pingTimer_.expires_after(config_.pingInterval);
        co_await pingTimer_.async_wait(kAwaitResult);
        if (stopped_ || finishing_) {
            co_return;
        }
        if (readerBusy_) {
            send(protocol::server_to_client::kPing, replies::kPing);
            continue;
        }
        if (unansweredPings_ >= config_.pingMisses) {
            stop("no answer to " + std::to_string(unansweredPings_) + " pings");
            co_return;
        }
        send(protocol::server_to_client::kPing, replies::kPing);
        ++unansweredPings_;
    }
}

asio::awaitable<void> Connection::deadlineLoop() {
    auto self = shared_from_this();
    deadline_.expires_after(config_.loginTimeout);
    while (!stopped_) {
        const auto [error] = co_await deadline_.async_wait(kAwaitResult);
        if (stopped_) {
            co_return;
        }
        if (error == asio::error::operation_aborted) {
            continue;  // re-armed by finish()
        }
        if (finishing_) {
            stop("did not take its last frames");
            co_return;
        }
        if (!handler_->loggedIn()) {
            send(replies::kNotice, "You did not log in in time. Please connect again.");
            finish("login time-out");
            continue;
        }
        deadline_.expires_at(asio::steady_timer::time_point::max());
    }
}

}  // namespace tavren::server
