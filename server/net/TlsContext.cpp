#include "server/net/TlsContext.h"

#include <openssl/err.h>
#include <openssl/ssl.h>

#include <fstream>
#include <sstream>
#include <stdexcept>

#include "tls/CertificateFingerprint.h"

namespace tavren::server {

namespace {

std::string openSslReason() {
    const unsigned long code = ERR_get_error();
    ERR_clear_error();
    if (code == 0) {
        return "unknown reason";
    }
    char text[256];
    ERR_error_string_n(code, text, sizeof text);
    return text;
}

std::string readFile(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        throw std::runtime_error("cannot read " + file.string());
    }
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

}  // namespace

TlsContext::TlsContext(SSL_CTX* context, std::string fingerprint)
    : context_(context), fingerprint_(std::move(fingerprint)) {}

TlsContext::~TlsContext() {
    SSL_CTX_free(context_);
}

std::shared_ptr<const TlsContext> TlsContext::load(const std::filesystem::path& certificateFile,
                                                   const std::filesystem::path& keyFile) {
    const auto fingerprint = tls::CertificateFingerprint::ofPem(readFile(certificateFile));
    if (!fingerprint) {
        throw std::runtime_error(certificateFile.string() + " holds no PEM certificate");
    }
    ERR_clear_error();
    SSL_CTX* context = SSL_CTX_new(TLS_server_method());
    if (!context) {
        throw std::runtime_error("TLS: " + openSslReason());
    }
    std::shared_ptr<const TlsContext> made(new TlsContext(context, *fingerprint));
    SSL_CTX_set_min_proto_version(context, TLS1_2_VERSION);
    // A client that hangs up without the closing alert has simply gone, as on a plain link.
    SSL_CTX_set_options(context, SSL_OP_NO_RENEGOTIATION | SSL_OP_NO_COMPRESSION |
                                     SSL_OP_CIPHER_SERVER_PREFERENCE |
                                     SSL_OP_IGNORE_UNEXPECTED_EOF);
    SSL_CTX_set_num_tickets(context, 0);
    SSL_CTX_set_session_cache_mode(context, SSL_SESS_CACHE_OFF);
    // Partial writes let a large queue go out record by record; the write buffer may move
    // because the bytes of a retried write are copied again into the thread's scratch buffer.
    SSL_CTX_set_mode(context, SSL_MODE_RELEASE_BUFFERS | SSL_MODE_ENABLE_PARTIAL_WRITE |
                                  SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER);
    if (SSL_CTX_use_certificate_chain_file(context, certificateFile.c_str()) != 1) {
        throw std::runtime_error(certificateFile.string() + ": " + openSslReason());
    }
    if (SSL_CTX_use_PrivateKey_file(context, keyFile.c_str(), SSL_FILETYPE_PEM) != 1) {
        throw std::runtime_error(keyFile.string() + ": " + openSslReason());
    }
    if (SSL_CTX_check_private_key(context) != 1) {
        throw std::runtime_error(keyFile.string() + " is not the key of " +
                                 certificateFile.string());
    }
    return made;
}

}  // namespace tavren::server
