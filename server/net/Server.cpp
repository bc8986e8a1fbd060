#include "server/net/Server.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <asio/co_spawn.hpp>
#include <asio/detached.hpp>
#include <asio/experimental/as_tuple.hpp>
#include <asio/steady_timer.hpp>
#include <asio/use_awaitable.hpp>

#include "core/protocol/Frame.h"
#include "server/base/Log.h"
#include "server/base/Replies.h"
#include "server/net/AddressGroup.h"
#include "server/net/Connection.h"
#include "server/net/OpenFileLimit.h"
#include "server/net/TlsCredentials.h"

namespace tavren::server {

namespace {

constexpr auto kAwaitResult = asio::experimental::as_tuple(asio::use_awaitable);
// A refused socket is kept open this long at most, so that the client reads its notice before
// the close (closing on unread bytes sends a reset, which may discard the notice)...
constexpr std::chrono::seconds kRefusalGrace{1};
// ...and only this many at once: under a flood of refusals the rest are closed at once, so that
// refusing never holds more descriptors than this.
constexpr std::size_t kMaxLingering = 64;
// Descriptors kept back from connections: the database, its journal, the log, lingering
// refusals, the spare descriptor, the signal pipe.
constexpr std::size_t kReservedDescriptors = kMaxLingering + 64;
constexpr std::chrono::milliseconds kAcceptRetryPause{100};

asio::ip::tcp::endpoint resolveListenAddress(asio::io_context& io, const ServerConfig& config) {
    asio::ip::tcp::resolver resolver(io);
    const auto results = resolver.resolve(
        config.listenHost, std::to_string(config.listenPort),
        asio::ip::resolver_base::passive | asio::ip::resolver_base::numeric_service);
    return results.begin()->endpoint();
}

// The cap that fits: the configured one, within the open-file limit after raising it.
std::size_t fitConnectionCap(std::size_t wanted) {
    const std::size_t limit = OpenFileLimit::raiseTo(wanted + kReservedDescriptors);
    const std::size_t room = limit > kReservedDescriptors ? limit - kReservedDescriptors : 1;
    if (room < wanted) {
        Log::warn("the open-file limit is " + std::to_string(limit) + ": at most " +
                  std::to_string(room) + " connections instead of " + std::to_string(wanted));
    }
    return std::min(wanted, room);
}

int openSpareDescriptor() {
    return ::open("/dev/null", O_RDONLY | O_CLOEXEC);
}

}  // namespace

Server::Server(asio::io_context& io, const ServerConfig& config, FrameHandlerFactory makeHandler)
    : config_(config),
      makeHandler_(std::move(makeHandler)),
      connectionCap_(fitConnectionCap(config_.maxConnections)),
      addressLimiter_(config_.maxConnectionsPerAddress, connectionCap_),
      connectRate_(config_.connectsPerMinute, config_.connectBurst),
      memory_(config_.memoryBudget),
      acceptor_(io, resolveListenAddress(io, config_)),
      spareDescriptor_(openSpareDescriptor()) {}

Server::~Server() {
    if (spareDescriptor_ >= 0) {
        ::close(spareDescriptor_);
    }
}

void Server::start() {
    const auto endpoint = localEndpoint();
    Log::info("listening on " + endpoint.address().to_string() + ":" +
              std::to_string(endpoint.port()) + ", at most " + std::to_string(connectionCap_) +
              " connections");
    asio::co_spawn(acceptor_.get_executor(), acceptLoop(), asio::detached);
}

void Server::stop() {
    if (stopped_) {
        return;
    }
    stopped_ = true;
    asio::error_code ignored;
    acceptor_.close(ignored);
    for (const auto& weak : connections_) {
        if (auto connection = weak.lock()) {
            connection->stop("server stopping");
        }
    }
    connections_.clear();
}

asio::awaitable<void> Server::acceptLoop() {
    while (!stopped_) {
        auto [error, socket] = co_await acceptor_.async_accept(kAwaitResult);
        if (stopped_) {
            co_return;
        }
        if ((error == asio::error::no_descriptors || error.value() == ENFILE) &&
            shedWithSpareDescriptor()) {
            continue;
        }
        if (error) {
            // Out of kernel memory, or a connection reset while it waited: pause instead of
            // spinning, and keep serving the others meanwhile.
            Log::warn("accept failed: " + error.message());
            asio::steady_timer pause(acceptor_.get_executor(), kAcceptRetryPause);
            co_await pause.async_wait(kAwaitResult);
            continue;
        }
        admit(std::move(socket));
    }
}

void Server::admit(asio::ip::tcp::socket socket) {
    asio::error_code peerError;
    const auto peer = socket.remote_endpoint(peerError);
    if (peerError) {
        return;  // gone before we looked
    }
    const std::string group = AddressGroup::of(peer.address());
    if (!connectRate_.admit(group, GroupRateLimiter::Clock::now())) {
        refuse(std::move(socket), group,
               "You are connecting too often. Please wait a minute and try again.",
               "connecting too often");
        return;
    }
    AddressLimiter::Refusal refusal = AddressLimiter::Refusal::kNone;
    auto slot = addressLimiter_.tryAcquire(group, &refusal);
    if (!slot) {
        if (refusal == AddressLimiter::Refusal::kServerFull) {
            refuse(std::move(socket), group, "The server is full. Please try again later.",
                   std::to_string(connectionCap_) + " connections open");
        } else {
            refuse(std::move(socket), group,
                   "Too many connections from your address. Please close one and try again.",
                   std::to_string(config_.maxConnectionsPerAddress) + " already open");
        }
        return;
    }
    forgetEndedConnections();
    auto connection = std::make_shared<Connection>(
        std::move(socket), config_, makeHandler_, std::move(*slot), memory_,
        peer.address().to_string() + ":" + std::to_string(peer.port()), group,
        tls_ ? tls_->current() : nullptr);
    connections_.push_back(connection);
    connection->start();
}

void Server::forgetEndedConnections() {
    // Pruned when the list has doubled since the last time, so accepting stays O(1) on average
    // however many connections are open.
    if (connections_.size() < forgetAt_) {
        return;
    }
    std::erase_if(connections_, [](const auto& weak) { return weak.expired(); });
    forgetAt_ = std::max<std::size_t>(64, connections_.size() * 2);
}

void Server::refuse(asio::ip::tcp::socket socket, const std::string& group, std::string_view notice,
                    std::string_view why) {
    Log::infoFrom(group, "refused a connection from " + group + ": " + std::string(why));
    // A few dozen bytes always fit a fresh socket's buffer: written at once, never waited for.
    const std::string frame = protocol::EncodeFrame(replies::kNotice, notice);
    asio::error_code ignored;
    socket.non_blocking(true, ignored);
    socket.write_some(asio::buffer(frame), ignored);
    socket.shutdown(asio::ip::tcp::socket::shutdown_send, ignored);
    if (lingering_ >= kMaxLingering) {
        socket.close(ignored);
        return;
    }
    asio::co_spawn(acceptor_.get_executor(),
                   linger(std::make_shared<asio::ip::tcp::socket>(std::move(socket))),
                   asio::detached);
}

asio::awaitable<void> Server::linger(std::shared_ptr<asio::ip::tcp::socket> socket) {
    ++lingering_;
    // Drain until the client closes (or the grace ends), so that the close is a FIN and not a
    // reset that could discard the notice unread. The timer's handler shares the socket, since it
    // may run after this coroutine has ended.
    asio::steady_timer grace(socket->get_executor(), kRefusalGrace);
    grace.async_wait([socket](const asio::error_code&) {
        asio::error_code closeError;
        socket->close(closeError);
    });
    std::array<char, 256> sink;
    for (;;) {
        const auto [error, count] =
            co_await socket->async_read_some(asio::buffer(sink), kAwaitResult);
        if (error) {
            break;
        }
    }
    grace.cancel();
    asio::error_code ignored;
    socket->close(ignored);
    --lingering_;
}

bool Server::shedWithSpareDescriptor() {
    // The waiting connection cannot be served; taking it off the backlog with the descriptor kept
    // for this moment ends it cleanly, where leaving it would wake the acceptor again at once.
    if (spareDescriptor_ >= 0) {
        ::close(spareDescriptor_);
        spareDescriptor_ = -1;
    }
    const int taken = ::accept4(acceptor_.native_handle(), nullptr, nullptr, SOCK_CLOEXEC);
    if (taken >= 0) {
        ::close(taken);
    }
    spareDescriptor_ = openSpareDescriptor();
    Log::infoFrom("descriptors", "out of file descriptors: closed a new connection at once");
    return taken >= 0;
}

}  // namespace tavren::server
