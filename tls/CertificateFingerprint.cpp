#include "tls/CertificateFingerprint.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

#include <array>
#include <memory>

namespace tavren::tls {

namespace {
constexpr std::size_t kDigestBytes = 32;
constexpr char kHex[] = "0123456789ABCDEF";

int hexValue(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return -1;
}
}  // namespace

std::string CertificateFingerprint::format(std::string_view digest) {
    std::string text;
    text.reserve(digest.size() * 3);
    for (const char byte : digest) {
        if (!text.empty()) {
            text += ':';
        }
        const auto value = static_cast<unsigned char>(byte);
        text += kHex[value >> 4];
        text += kHex[value & 0x0F];
    }
    return text;
}

std::string CertificateFingerprint::ofDer(std::string_view der) {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned int length = 0;
    EVP_Digest(der.data(), der.size(), digest.data(), &length, EVP_sha256(), nullptr);
    return format(std::string_view(reinterpret_cast<const char*>(digest.data()), length));
}

std::optional<std::string> CertificateFingerprint::ofPem(std::string_view pem) {
    std::unique_ptr<BIO, decltype(&BIO_free)> bio(
        BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())), &BIO_free);
    if (!bio) {
        return std::nullopt;
    }
    std::unique_ptr<X509, decltype(&X509_free)> certificate(
        PEM_read_bio_X509(bio.get(), nullptr, nullptr, nullptr), &X509_free);
    if (!certificate) {
        return std::nullopt;
    }
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned int length = 0;
    if (X509_digest(certificate.get(), EVP_sha256(), digest.data(), &length) != 1) {
        return std::nullopt;
    }
    return format(std::string_view(reinterpret_cast<const char*>(digest.data()), length));
}

std::optional<std::string> CertificateFingerprint::normalise(std::string_view text) {
    std::string digest;
    int high = -1;
    for (const char c : text) {
        if (c == ':' || c == ' ') {
            continue;
        }
        const int value = hexValue(c);
        if (value < 0) {
            return std::nullopt;
        }
        if (high < 0) {
            high = value;
        } else {
            digest += static_cast<char>(high * 16 + value);
            high = -1;
        }
    }
    if (high >= 0 || digest.size() != kDigestBytes) {
        return std::nullopt;
    }
    return format(digest);
}

}  // namespace tavren::tls
