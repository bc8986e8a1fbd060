#include "server/net/TlsSession.h"

#include <openssl/err.h>
#include <openssl/ssl.h>

#include <cerrno>
#include <climits>
#include <cstring>
#include <new>

namespace tavren::server {

namespace {
int clampedSize(std::size_t size) {
    return static_cast<int>(std::min<std::size_t>(size, INT_MAX));
}
}  // namespace

TlsSession::TlsSession(std::shared_ptr<const TlsContext> context, int socket)
    : context_(std::move(context)), ssl_(SSL_new(context_->native())) {
    if (!ssl_ || SSL_set_fd(ssl_, socket) != 1) {
        SSL_free(ssl_);
        throw std::bad_alloc();
    }
    SSL_set_accept_state(ssl_);
}

TlsSession::~TlsSession() {
    SSL_free(ssl_);
}

TlsSession::Result TlsSession::outcome(int returned) {
    const int error = SSL_get_error(ssl_, returned);
    switch (error) {
        case SSL_ERROR_WANT_READ:
            return {Status::kWantRead};
        case SSL_ERROR_WANT_WRITE:
            return {Status::kWantWrite};
        case SSL_ERROR_ZERO_RETURN:
            return {Status::kClosed};
        case SSL_ERROR_SYSCALL:
            if (ERR_peek_error() == 0) {
                // The peer went away without the closing alert, or the socket failed.
                failure_ = errno != 0 ? std::strerror(errno) : "closed without a TLS alert";
                ERR_clear_error();
                return {errno != 0 ? Status::kFailed : Status::kClosed};
            }
            [[fallthrough]];
        default: {
            const unsigned long code = ERR_get_error();
            char text[256] = "TLS error";
            if (code != 0) {
                ERR_error_string_n(code, text, sizeof text);
            }
            failure_ = text;
            ERR_clear_error();
            return {Status::kFailed};
        }
    }
}

TlsSession::Result TlsSession::handshake() {
    ERR_clear_error();
    errno = 0;
    const int returned = SSL_do_handshake(ssl_);
    return returned == 1 ? Result{Status::kDone} : outcome(returned);
}

TlsSession::Result TlsSession::read(char* data, std::size_t size) {
    ERR_clear_error();
    errno = 0;
    const int returned = SSL_read(ssl_, data, clampedSize(size));
    return returned > 0 ? Result{Status::kDone, static_cast<std::size_t>(returned)}
                        : outcome(returned);
}

TlsSession::Result TlsSession::write(const char* data, std::size_t size) {
    ERR_clear_error();
    errno = 0;
    const int returned = SSL_write(ssl_, data, clampedSize(size));
    return returned > 0 ? Result{Status::kDone, static_cast<std::size_t>(returned)}
                        : outcome(returned);
}

void TlsSession::shutdown() {
    ERR_clear_error();
    if (SSL_is_init_finished(ssl_)) {
        SSL_shutdown(ssl_);
    }
    ERR_clear_error();
}

std::string TlsSession::protocol() const {
    return SSL_get_version(ssl_);
}

std::string TlsSession::cipher() const {
    const char* name = SSL_get_cipher_name(ssl_);
    return name ? name : "";
}

}  // namespace tavren::server
