#pragma once

#include <asio/awaitable.hpp>
#include <asio/io_context.hpp>
#include <asio/ip/tcp.hpp>
#include <memory>
#include <vector>

#include "server/base/ServerConfig.h"
#include "server/net/AddressLimiter.h"
#include "server/net/FrameHandler.h"

namespace tavren::server {

class Connection;

// The listening socket and the connections. Binds in the constructor (throws std::system_error
// when the address is taken), accepts once started, gives each connection a handler from
// `makeHandler`, and on stop() closes the listener and every connection so that the io_context
// runs out of work.
class Server {
  public:
    Server(asio::io_context& io, const ServerConfig& config, FrameHandlerFactory makeHandler);
    ~Server();

    asio::ip::tcp::endpoint localEndpoint() const { return acceptor_.local_endpoint(); }
    void start();
    void stop();

  private:
    asio::awaitable<void> acceptLoop();
    asio::awaitable<void> refuse(asio::ip::tcp::socket socket, std::string address);

    const ServerConfig& config_;
    FrameHandlerFactory makeHandler_;
    AddressLimiter addressLimiter_;
    asio::ip::tcp::acceptor acceptor_;
    std::vector<std::weak_ptr<Connection>> connections_;
    bool stopped_ = false;
};

}  // namespace tavren::server
