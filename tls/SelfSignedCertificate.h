#pragma once

#include <string>

namespace tavren::tls {

// A key and a certificate signed by that key, both as PEM text. Nobody vouches for such a
// certificate: it is recognised by its fingerprint (trust on first use for a server, the
// fingerprint the chat server relayed for a peer).
//
// The key is ECDSA on P-256: small, fast to make and to sign with, and understood by every TLS
// library a member's client or an operator's tools may use.
struct SelfSignedCertificate {
    std::string certificatePem;
    std::string privateKeyPem;

    // Makes a new key and certificate for `commonName` (also its DNS name), valid from an hour
    // ago (clocks differ) for `validDays`. Throws std::runtime_error when OpenSSL fails.
    static SelfSignedCertificate generate(const std::string& commonName, int validDays);
};

}  // namespace tavren::tls
