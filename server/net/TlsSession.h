#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "server/net/TlsContext.h"

typedef struct ssl_st SSL;

namespace tavren::server {

// One connection's TLS, driven over its non-blocking socket directly: a call does what the
// socket allows at once and says what it waits for. Nothing is buffered here beyond what OpenSSL
// keeps for a record in progress, so an idle encrypted connection costs its SSL object only.
class TlsSession {
  public:
    enum class Status { kDone, kWantRead, kWantWrite, kClosed, kFailed };
    struct Result {
        Status status;
        std::size_t bytes = 0;
    };

    // Throws std::bad_alloc when OpenSSL cannot make the session.
    TlsSession(std::shared_ptr<const TlsContext> context, int socket);
    ~TlsSession();
    TlsSession(const TlsSession&) = delete;
    TlsSession& operator=(const TlsSession&) = delete;

    Result handshake();
    Result read(char* data, std::size_t size);
    // With partial writes on: kDone with `bytes` > 0 once at least one record went out. A write
    // that wanted the socket must be repeated with at least as many bytes, the same ones first.
    Result write(const char* data, std::size_t size);
    // Sends the closing alert if the socket takes it now; never waits.
    void shutdown();

    // "TLSv1.3" and the like, once the handshake is done.
    std::string protocol() const;
    std::string cipher() const;
    // Why the last call failed.
    const std::string& failure() const { return failure_; }

  private:
    Result outcome(int returned);

    std::shared_ptr<const TlsContext> context_;  // kept for as long as the session lives
    SSL* ssl_;
    std::string failure_;
};

}  // namespace tavren::server
