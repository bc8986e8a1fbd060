#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tavren::tls {

// The SHA-256 fingerprint of a certificate (of its DER bytes), written as upper-case hex pairs
// separated by ":" ("AB:01:…", 95 characters), the way browsers and `openssl x509 -fingerprint`
// show it, so that a member can compare it with what the operator publishes.
class CertificateFingerprint {
  public:
    // The fingerprint of the first certificate in `pem`, or nothing when there is none.
    static std::optional<std::string> ofPem(std::string_view pem);
    static std::string ofDer(std::string_view der);
    // Writes a digest the way fingerprints are shown.
    static std::string format(std::string_view digest);
    // Reads a fingerprint as a member or a script may write it: hex with or without ":" (any
    // case). Nothing when it is not 32 bytes of hex.
    static std::optional<std::string> normalise(std::string_view text);
};

}  // namespace tavren::tls
