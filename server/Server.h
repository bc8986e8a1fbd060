#pragma once

#include <asio/awaitable.hpp>
#include <asio/io_context.hpp>
#include <asio/ip/tcp.hpp>
#include <memory>
#include <vector>

#include "server/AddressLimiter.h"
#include "server/LocalPresenceHub.h"
#include "server/PasswordWorker.h"
#include "server/ServerConfig.h"
#include "server/ServerContext.h"

namespace tavren::server {

class AccountStore;
class Connection;

// The listening socket and everything the connections share. Binds in the constructor (throws
// std::system_error when the address is taken), accepts once started, and on stop() closes the
// listener and every connection so that the io_context runs out of work.
class Server {
  public:
    Server(asio::io_context& io, ServerConfig config, AccountStore& accounts);
    ~Server();

    asio::ip::tcp::endpoint localEndpoint() const { return acceptor_.local_endpoint(); }
    void start();
    void stop();

  private:
    asio::awaitable<void> acceptLoop();
    asio::awaitable<void> refuse(asio::ip::tcp::socket socket, std::string address);

    ServerConfig config_;
    LocalPresenceHub presence_;
    PasswordWorker passwords_;
    ServerContext context_;
    AddressLimiter addressLimiter_;
    asio::ip::tcp::acceptor acceptor_;
    std::vector<std::weak_ptr<Connection>> connections_;
    bool stopped_ = false;
};

}  // namespace tavren::server
