#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "server/base/ServerConfig.h"
#include "server/net/TlsContext.h"

namespace tavren::server {

// Where the server's certificate comes from, and the context new connections get. With files
// named by the operator those are used; without, the server makes its own certificate at the
// first start and keeps it in its data folder (owner-only), so that its fingerprint stays the
// same from one start to the next and members are asked to trust it once.
class TlsCredentials {
  public:
    static constexpr const char* kOwnCertificate = "tls-certificate.pem";
    static constexpr const char* kOwnKey = "tls-key.pem";

    // Throws std::runtime_error when the files cannot be used (or the own ones cannot be made).
    TlsCredentials(std::filesystem::path certificateFile, std::filesystem::path keyFile);
    // The server's own certificate in `folder`, made (for `hostName`) when there is none or the
    // one there cannot be used; that one is kept beside it with ".unusable" appended.
    static TlsCredentials own(const std::filesystem::path& folder, const std::string& hostName);
    // What the configuration names: the operator's files, else the own certificate beside the
    // database, made for the listening host's name (the machine's name when it listens on all).
    static TlsCredentials forServer(const ServerConfig& config);

    std::shared_ptr<const TlsContext> current() const { return current_; }
    const std::filesystem::path& certificateFile() const { return certificateFile_; }

    // Reads the files again. On failure the certificate in use stays and `why` says what is
    // wrong. Connections that are open keep theirs; new ones get the new one.
    bool reload(std::string& why);

  private:
    std::filesystem::path certificateFile_;
    std::filesystem::path keyFile_;
    std::shared_ptr<const TlsContext> current_;
};

}  // namespace tavren::server
