#include "BenchSocket.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <openssl/ssl.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace tavren::bench {

namespace {
// One context for every encrypted socket of the process.
SSL_CTX* clientContext() {
    static SSL_CTX* context = SSL_CTX_new(TLS_client_method());
    return context;
}
}  // namespace

BenchSocket::BenchSocket(std::uint16_t port, bool encrypted) {
    fd_ = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (fd_ < 0 || connect(fd_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
        if (fd_ >= 0) {
            close(fd_);
        }
        throw std::runtime_error("cannot connect to port " + std::to_string(port));
    }
    const int on = 1;
    setsockopt(fd_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    if (encrypted) {
        tls_ = SSL_new(clientContext());
        SSL_set_fd(tls_, fd_);
        if (SSL_connect(tls_) != 1) {
            SSL_free(tls_);
            close(fd_);
            throw std::runtime_error("no TLS handshake with port " + std::to_string(port));
        }
    }
    fcntl(fd_, F_SETFL, fcntl(fd_, F_GETFL) | O_NONBLOCK);
}

BenchSocket::~BenchSocket() {
    SSL_free(tls_);
    close(fd_);
}

bool BenchSocket::waiting() const {
    return tls_ != nullptr && SSL_pending(tls_) > 0;
}

void BenchSocket::send(protocol::CodePair code, std::string_view payload) {
    sendRaw(protocol::EncodeFrame(code, payload));
}

void BenchSocket::sendRaw(std::string_view bytes) {
    while (!bytes.empty()) {
        ssize_t sent = 0;
        bool full = false;
        if (tls_) {
            sent = SSL_write(tls_, bytes.data(), static_cast<int>(bytes.size()));
            full = sent <= 0 && SSL_get_error(tls_, static_cast<int>(sent)) == SSL_ERROR_WANT_WRITE;
        } else {
            sent = ::send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
            full = sent < 0 && (errno == EAGAIN || errno == EWOULDBLOCK);
        }
        if (sent > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(sent));
        } else if (full) {
            pollfd waiter{fd_, POLLOUT, 0};
            poll(&waiter, 1, 1000);
        } else {
            throw std::runtime_error("the server closed the connection while sending");
        }
    }
}

bool BenchSocket::readSome() {
    char buffer[65536];
    if (tls_) {
        const int count = SSL_read(tls_, buffer, sizeof buffer);
        if (count > 0) {
            cutter_.Append(std::string_view(buffer, static_cast<std::size_t>(count)));
            return true;
        }
        if (SSL_get_error(tls_, count) == SSL_ERROR_WANT_READ) {
            return false;
        }
        throw std::runtime_error("the server closed a member's connection");
    }
    const ssize_t count = recv(fd_, buffer, sizeof buffer, 0);
    if (count > 0) {
        cutter_.Append(std::string_view(buffer, static_cast<std::size_t>(count)));
        return true;
    }
    if (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
        return false;
    }
    throw std::runtime_error(count == 0 ? std::string("the server closed a member's connection")
                                        : std::string("a member's connection failed: ") +
                                              std::strerror(errno));
}

protocol::Frame BenchSocket::next(std::chrono::milliseconds timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    for (;;) {
        protocol::CutResult cut = cutter_.Next();
        if (cut.kind == protocol::CutResult::Kind::kFrame) {
            return std::move(cut.frame);
        }
        if (cut.kind == protocol::CutResult::Kind::kError) {
            throw std::runtime_error("broken frame: " + cut.errorText);
        }
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        pollfd waiter{fd_, POLLIN, 0};
        if (!waiting() &&
            (left.count() <= 0 || poll(&waiter, 1, static_cast<int>(left.count())) <= 0)) {
            throw std::runtime_error("no answer in time");
        }
        readSome();
    }
}

protocol::Frame BenchSocket::skipTo(protocol::CodePair code) {
    for (;;) {
        protocol::Frame frame = next();
        if (frame.code == code) {
            return frame;
        }
    }
}

}  // namespace tavren::bench
