#pragma once

#include <filesystem>
#include <memory>
#include <string>

typedef struct ssl_ctx_st SSL_CTX;

namespace tavren::server {

// The server's side of TLS: its certificate (a chain allowed) and key, and the settings every
// encrypted connection shares. TLS 1.2 at least, 1.3 preferred; no renegotiation; no session
// tickets (clients reconnect seldom, and a ticket costs a write after every handshake); buffers
// given back while a connection is idle, so that an idle encrypted member costs little more than
// a plain one.
//
// A loaded context never changes. Reloading makes a new one; connections keep the one they
// started with until they end.
class TlsContext {
  public:
    // Throws std::runtime_error naming the file and OpenSSL's reason when either cannot be used.
    static std::shared_ptr<const TlsContext> load(const std::filesystem::path& certificateFile,
                                                  const std::filesystem::path& keyFile);
    ~TlsContext();
    TlsContext(const TlsContext&) = delete;
    TlsContext& operator=(const TlsContext&) = delete;

    SSL_CTX* native() const { return context_; }
    // The SHA-256 fingerprint of the server's own certificate (the first of the chain).
    const std::string& fingerprint() const { return fingerprint_; }

  private:
    TlsContext(SSL_CTX* context, std::string fingerprint);

    SSL_CTX* context_;
    std::string fingerprint_;
};

}  // namespace tavren::server
