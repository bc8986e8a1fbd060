#pragma once

#include <asio/awaitable.hpp>
#include <asio/io_context.hpp>
#include <asio/ip/tcp.hpp>
#include <memory>
#include <string_view>
#include <vector>

#include "server/base/ServerConfig.h"
#include "server/net/AddressLimiter.h"
#include "server/net/FrameHandler.h"
#include "server/net/GroupRateLimiter.h"
#include "server/net/MemoryBudget.h"

namespace tavren::server {

class Connection;
class TlsCredentials;

// The listening socket and the connections. Binds in the constructor (throws std::system_error
// when the address is taken), accepts once started, gives each connection a handler from
// `makeHandler`, and on stop() closes the listener and every connection so that the io_context
// runs out of work.
//
// A new connection is refused, with a notice and a close, when its address group connects too
// often, when the group or the server already holds the most connections allowed. The server
// never holds more connections than its open-file limit leaves room for, and when accepting runs
// out of descriptors all the same it takes the waiting connection with a spare descriptor and
// closes it, instead of leaving it in the backlog where it would wake the acceptor for ever.
class Server {
  public:
    Server(asio::io_context& io, const ServerConfig& config, FrameHandlerFactory makeHandler);
    ~Server();

    asio::ip::tcp::endpoint localEndpoint() const { return acceptor_.local_endpoint(); }
    void start();
    void stop();
    // Connections that open with a TLS handshake are encrypted with the credentials' current
    // certificate; without credentials (tests of the plain protocol) every connection is plain.
    void setTls(const TlsCredentials* credentials) { tls_ = credentials; }

    // The connection cap in force: the configured one, lowered to fit the open-file limit.
    std::size_t connectionCap() const { return connectionCap_; }

  private:
    asio::awaitable<void> acceptLoop();
    void admit(asio::ip::tcp::socket socket);
    void refuse(asio::ip::tcp::socket socket, const std::string& group, std::string_view notice,
                std::string_view why);
    asio::awaitable<void> linger(std::shared_ptr<asio::ip::tcp::socket> socket);
    // Takes one waiting connection with the spare descriptor and closes it at once; false when
    // even that failed (then the caller pauses).
    bool shedWithSpareDescriptor();
    void forgetEndedConnections();

    const ServerConfig& config_;
    FrameHandlerFactory makeHandler_;
    std::size_t connectionCap_;
    AddressLimiter addressLimiter_;
    GroupRateLimiter connectRate_;
    MemoryBudget memory_;
    asio::ip::tcp::acceptor acceptor_;
    std::vector<std::weak_ptr<Connection>> connections_;
    std::size_t forgetAt_ = 64;
    std::size_t lingering_ = 0;  // refused sockets waiting for their client to close
    const TlsCredentials* tls_ = nullptr;
    int spareDescriptor_ = -1;
    bool stopped_ = false;
};

}  // namespace tavren::server
