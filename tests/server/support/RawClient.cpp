#include "server/support/RawClient.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <stdexcept>

#include "core/protocol/Catalogue.h"
#include "tls/CertificateFingerprint.h"

namespace tavren::test {

RawClient::RawClient(std::uint16_t port, int receiveBuffer, const char* sourceAddress) {
    // OpenSSL writes with write(2), which raises SIGPIPE on a connection the server closed.
    signal(SIGPIPE, SIG_IGN);
    fd_ = socket(AF_INET, SOCK_STREAM, 0);
    if (receiveBuffer > 0) {
        setsockopt(fd_, SOL_SOCKET, SO_RCVBUF, &receiveBuffer, sizeof receiveBuffer);
    }
    if (sourceAddress != nullptr) {
        sockaddr_in source{};
        source.sin_family = AF_INET;
        inet_pton(AF_INET, sourceAddress, &source.sin_addr);
        if (bind(fd_, reinterpret_cast<sockaddr*>(&source), sizeof source) != 0) {
            close(fd_);
            throw std::runtime_error(std::string("cannot bind to ") + sourceAddress);
        }
    }
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(fd_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
        close(fd_);
        throw std::runtime_error("cannot connect to port " + std::to_string(port));
    }
}

RawClient::~RawClient() {
    SSL_free(tls_);
    SSL_CTX_free(tlsContext_);
    close(fd_);
}

std::optional<std::string> RawClient::startTls() {
    tlsContext_ = SSL_CTX_new(TLS_client_method());
    tls_ = SSL_new(tlsContext_);
    SSL_set_fd(tls_, fd_);
    if (SSL_connect(tls_) != 1) {
        SSL_free(tls_);
        tls_ = nullptr;
        return std::nullopt;
    }
    X509* certificate = SSL_get1_peer_certificate(tls_);
    if (certificate == nullptr) {
        return std::nullopt;
    }
    unsigned char* der = nullptr;
    const int length = i2d_X509(certificate, &der);
    std::string fingerprint = tls::CertificateFingerprint::ofDer(
        std::string_view(reinterpret_cast<const char*>(der), static_cast<std::size_t>(length)));
    OPENSSL_free(der);
    X509_free(certificate);
    return fingerprint;
}

std::string RawClient::tlsProtocol() const {
    return tls_ ? SSL_get_version(tls_) : "";
}

long RawClient::receive(char* buffer, std::size_t size) {
    if (tls_) {
        return SSL_read(tls_, buffer, static_cast<int>(size));
    }
    return recv(fd_, buffer, size, 0);
}

void RawClient::send(protocol::CodePair code, std::string_view payload) {
    sendRaw(protocol::EncodeFrame(code, payload));
}

void RawClient::sendRaw(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t sent = tls_ ? SSL_write(tls_, bytes.data(), static_cast<int>(bytes.size()))
                                  : ::send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0) {
            return;  // the server has gone; reading will tell the test
        }
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
}

std::optional<protocol::Frame> RawClient::next(std::chrono::milliseconds timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    for (;;) {
        protocol::CutResult cut = cutter_.Next();
        if (cut.kind == protocol::CutResult::Kind::kError) {
            ADD_FAILURE() << "the server sent a broken frame: " << cut.errorText;
            return std::nullopt;
        }
        if (cut.kind == protocol::CutResult::Kind::kFrame) {
            if (std::find(ignored_.begin(), ignored_.end(), cut.frame.code) != ignored_.end()) {
                continue;
            }
            if (cut.frame.code != protocol::server_to_client::kPing) {
                return std::move(cut.frame);
            }
            ++pingsSeen_;
            if (answerPings_) {
                send(protocol::client_to_server::kPong, "Pong");
            }
            continue;
        }
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        pollfd poller{fd_, POLLIN, 0};
        const bool decrypted = tls_ != nullptr && SSL_pending(tls_) > 0;
        if (closed_ || left.count() <= 0 ||
            (!decrypted && poll(&poller, 1, static_cast<int>(left.count())) <= 0)) {
            return std::nullopt;
        }
        char buffer[8192];
        const long count = receive(buffer, sizeof buffer);
        closed_ = count <= 0;  // orderly close or reset, the same to a test
        if (closed_) {
            return std::nullopt;
        }
        cutter_.Append(std::string_view(buffer, static_cast<std::size_t>(count)));
    }
}

protocol::Frame RawClient::expect(protocol::CodePair code, std::chrono::milliseconds timeout) {
    auto frame = next(timeout);
    if (!frame) {
        ADD_FAILURE() << "expected (" << code.cmd1 << ", " << code.cmd2 << "), got "
                      << (closed_ ? "a closed connection" : "nothing");
        return {};
    }
    EXPECT_EQ(frame->code, code) << "got (" << frame->code.cmd1 << ", " << frame->code.cmd2
                                 << ") \"" << frame->payload << "\"";
    return *frame;
}

bool RawClient::waitClosed(std::chrono::milliseconds timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (!closed_ && std::chrono::steady_clock::now() < deadline) {
        next(std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now()));
    }
    return closed_;
}

bool RawClient::waitHangUp(std::chrono::milliseconds timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (!closed_) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        pollfd poller{fd_, POLLIN, 0};
        if (left.count() <= 0 || poll(&poller, 1, static_cast<int>(left.count())) <= 0) {
            return false;
        }
        char buffer[4096];
        closed_ = recv(fd_, buffer, sizeof buffer, 0) <= 0;
    }
    return true;
}

}  // namespace tavren::test
