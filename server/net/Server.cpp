#include "server/net/Server.h"

#include <algorithm>
#include <array>
#include <asio/co_spawn.hpp>
#include <asio/detached.hpp>
#include <asio/experimental/as_tuple.hpp>
#include <asio/steady_timer.hpp>
#include <asio/use_awaitable.hpp>
#include <asio/write.hpp>

#include "core/protocol/Frame.h"
#include "server/base/Log.h"
#include "server/base/Replies.h"
#include "server/net/Connection.h"

namespace tavren::server {

namespace {

constexpr auto kAwaitResult = asio::experimental::as_tuple(asio::use_awaitable);
constexpr std::chrono::seconds kRefusalGrace{2};
constexpr std::chrono::milliseconds kAcceptRetryPause{100};

asio::ip::tcp::endpoint resolveListenAddress(asio::io_context& io, const ServerConfig& config) {
    asio::ip::tcp::resolver resolver(io);
    const auto results = resolver.resolve(
        config.listenHost, std::to_string(config.listenPort),
        asio::ip::resolver_base::passive | asio::ip::resolver_base::numeric_service);
    return results.begin()->endpoint();
}

}  // namespace

Server::Server(asio::io_context& io, const ServerConfig& config, FrameHandlerFactory makeHandler)
    : config_(config),
      makeHandler_(std::move(makeHandler)),
      addressLimiter_(config_.maxConnectionsPerAddress),
      acceptor_(io, resolveListenAddress(io, config_)) {}

Server::~Server() = default;

void Server::start() {
    const auto endpoint = localEndpoint();
    Log::info("listening on " + endpoint.address().to_string() + ":" +
              std::to_string(endpoint.port()));
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
        if (error) {
            // Running out of descriptors passes as connections close; pause instead of spinning,
            // and keep serving the others meanwhile.
            Log::warn("accept failed: " + error.message());
            asio::steady_timer pause(acceptor_.get_executor(), kAcceptRetryPause);
            co_await pause.async_wait(kAwaitResult);
            continue;
        }
        asio::error_code peerError;
        const auto peer = socket.remote_endpoint(peerError);
        if (peerError) {
            continue;  // gone before we looked
        }
        std::string address = peer.address().to_string();
        auto slot = addressLimiter_.tryAcquire(address);
        if (!slot) {
            asio::co_spawn(acceptor_.get_executor(), refuse(std::move(socket), std::move(address)),
                           asio::detached);
            continue;
        }
        std::erase_if(connections_, [](const auto& weak) { return weak.expired(); });
        auto connection =
            std::make_shared<Connection>(std::move(socket), config_, makeHandler_, std::move(*slot),
                                         address + ":" + std::to_string(peer.port()));
        connections_.push_back(connection);
        connection->start();
    }
}

asio::awaitable<void> Server::refuse(asio::ip::tcp::socket socket, std::string address) {
    Log::warn("refused a connection from " + address + ": " +
              std::to_string(config_.maxConnectionsPerAddress) + " already open");
    // Shared with the grace timer's handler, which may run after this coroutine has ended.
    const auto refused = std::make_shared<asio::ip::tcp::socket>(std::move(socket));
    const std::string notice = protocol::EncodeFrame(
        replies::kNotice,
        "Too many connections from your address. Please close one and try again.");
    // A few dozen bytes always fit in a fresh socket's buffer, so this never waits on the client.
    co_await asio::async_write(*refused, asio::buffer(notice), kAwaitResult);
    asio::error_code ignored;
    refused->shutdown(asio::ip::tcp::socket::shutdown_send, ignored);
    // Drain until the client closes (or a short grace ends), so that the close is a FIN and not
    // a reset that could discard the notice unread.
    asio::steady_timer grace(refused->get_executor(), kRefusalGrace);
    grace.async_wait([refused](const asio::error_code&) {
        asio::error_code closeError;
        refused->close(closeError);
    });
    std::array<char, 512> sink;
    for (;;) {
        const auto [error, count] =
            co_await refused->async_read_some(asio::buffer(sink), kAwaitResult);
        if (error) {
            break;
        }
    }
    grace.cancel();
}

}  // namespace tavren::server
