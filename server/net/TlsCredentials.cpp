#include "server/net/TlsCredentials.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <stdexcept>
#include <system_error>

#include "server/base/Log.h"
#include "tls/SelfSignedCertificate.h"

namespace tavren::server {

namespace {

// Ten years: a certificate nobody vouches for is trusted by its fingerprint, and a shorter life
// would only make every member answer the same question again.
constexpr int kOwnCertificateDays = 3650;

// Written to a new file only the owner can read, then moved into place, so that a crash never
// leaves half a key and nobody else ever sees it.
void writePrivately(const std::filesystem::path& file, const std::string& text) {
    const std::filesystem::path temporary = file.string() + ".new";
    const int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd < 0) {
        throw std::system_error(errno, std::generic_category(), "cannot write " + file.string());
    }
    ::fchmod(fd, 0600);
    std::size_t written = 0;
    while (written < text.size()) {
        const ssize_t n = ::write(fd, text.data() + written, text.size() - written);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            const int error = errno;
            ::close(fd);
            throw std::system_error(error, std::generic_category(),
                                    "cannot write " + file.string());
        }
        written += static_cast<std::size_t>(n);
    }
    ::fsync(fd);
    ::close(fd);
    std::filesystem::rename(temporary, file);
}

void setAside(const std::filesystem::path& file) {
    std::error_code ignored;
    if (std::filesystem::exists(file, ignored)) {
        std::filesystem::rename(file, file.string() + ".unusable", ignored);
    }
}

}  // namespace

TlsCredentials::TlsCredentials(std::filesystem::path certificateFile, std::filesystem::path keyFile)
    : certificateFile_(std::move(certificateFile)),
      keyFile_(std::move(keyFile)),
      current_(TlsContext::load(certificateFile_, keyFile_)) {}

TlsCredentials TlsCredentials::own(const std::filesystem::path& folder,
                                   const std::string& hostName) {
    const auto certificate = folder / kOwnCertificate;
    const auto key = folder / kOwnKey;
    std::error_code ignored;
    if (std::filesystem::exists(certificate, ignored) || std::filesystem::exists(key, ignored)) {
        try {
            return TlsCredentials(certificate, key);
        } catch (const std::exception& error) {
            Log::warn(std::string("own TLS certificate unusable (") + error.what() +
                      "): making a new one; members will be told that it changed");
            setAside(certificate);
            setAside(key);
        }
    }
    std::filesystem::create_directories(folder);
    const auto made = tls::SelfSignedCertificate::generate(hostName, kOwnCertificateDays);
    writePrivately(key, made.privateKeyPem);
    writePrivately(certificate, made.certificatePem);
    Log::info("made the server's own TLS certificate " + certificate.string());
    return TlsCredentials(certificate, key);
}

TlsCredentials TlsCredentials::forServer(const ServerConfig& config) {
    if (!config.tls.certificateFile.empty()) {
        return TlsCredentials(config.tls.certificateFile, config.tls.keyFile);
    }
    std::string hostName = config.listenHost;
    if (hostName.empty() || hostName == "0.0.0.0" || hostName == "::") {
        char name[256] = {};
        hostName = ::gethostname(name, sizeof name - 1) == 0 && name[0] ? name : "localhost";
    }
    std::filesystem::path folder = config.databasePath.parent_path();
    if (folder.empty()) {
        folder = ".";
    }
    return own(folder, hostName);
}

bool TlsCredentials::reload(std::string& why) {
    try {
        current_ = TlsContext::load(certificateFile_, keyFile_);
        return true;
    } catch (const std::exception& error) {
        why = error.what();
        return false;
    }
}

}  // namespace tavren::server
