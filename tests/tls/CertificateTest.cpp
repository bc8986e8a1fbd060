#include <gtest/gtest.h>
#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <memory>

#include "tls/CertificateFingerprint.h"
#include "tls/SelfSignedCertificate.h"

namespace tavren::tls {
namespace {

std::unique_ptr<X509, decltype(&X509_free)> readCertificate(const std::string& pem) {
    std::unique_ptr<BIO, decltype(&BIO_free)> bio(BIO_new_mem_buf(pem.data(), int(pem.size())),
                                                  &BIO_free);
    return {PEM_read_bio_X509(bio.get(), nullptr, nullptr, nullptr), &X509_free};
}

std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> readKey(const std::string& pem) {
    std::unique_ptr<BIO, decltype(&BIO_free)> bio(BIO_new_mem_buf(pem.data(), int(pem.size())),
                                                  &BIO_free);
    return {PEM_read_bio_PrivateKey(bio.get(), nullptr, nullptr, nullptr), &EVP_PKEY_free};
}

// What a TLS library checks of the certificate: that it parses, that the key signs for it,
// that it verifies as its own issuer, that it is valid now and names the host; and two made
// one after the other are different identities.
TEST(SelfSignedCertificateTest, IsAValidIdentityOfItsOwnAndNeverRepeats) {
    const auto made = SelfSignedCertificate::generate("chat.example.org", 3650);
    auto certificate = readCertificate(made.certificatePem);
    auto key = readKey(made.privateKeyPem);
    ASSERT_TRUE(certificate);
    ASSERT_TRUE(key);
    EXPECT_EQ(X509_check_private_key(certificate.get(), key.get()), 1);
    EXPECT_EQ(X509_verify(certificate.get(), key.get()), 1);
    EXPECT_EQ(EVP_PKEY_get_base_id(key.get()), EVP_PKEY_EC);
    EXPECT_EQ(X509_check_host(certificate.get(), "chat.example.org", 0, 0, nullptr), 1);
    EXPECT_EQ(X509_cmp_current_time(X509_get0_notBefore(certificate.get())), -1);
    EXPECT_EQ(X509_cmp_current_time(X509_get0_notAfter(certificate.get())), 1);

    const auto other = SelfSignedCertificate::generate("chat.example.org", 3650);
    EXPECT_NE(other.privateKeyPem, made.privateKeyPem);
    EXPECT_NE(CertificateFingerprint::ofPem(other.certificatePem),
              CertificateFingerprint::ofPem(made.certificatePem));
}

// The fingerprint of the PEM is the digest of the DER inside it, written as a member compares
// it; what a member pastes (any case, with or without colons) reads back the same; anything
// that is not a SHA-256 digest is refused.
TEST(CertificateFingerprintTest, PemDerAndTypedFormsAgree) {
    const auto made = SelfSignedCertificate::generate("localhost", 1);
    auto certificate = readCertificate(made.certificatePem);
    unsigned char* der = nullptr;
    const int length = i2d_X509(certificate.get(), &der);
    ASSERT_GT(length, 0);
    const std::string fromDer =
        CertificateFingerprint::ofDer(std::string_view(reinterpret_cast<char*>(der), length));
    OPENSSL_free(der);

    const auto fromPem = CertificateFingerprint::ofPem(made.certificatePem);
    ASSERT_TRUE(fromPem);
    EXPECT_EQ(*fromPem, fromDer);
    EXPECT_EQ(fromPem->size(), 95u);
    EXPECT_EQ(fromPem->find_first_of("abcdef"), std::string::npos);

    std::string typed;
    for (const char c : *fromPem) {
        if (c != ':') {
            typed += char(std::tolower(static_cast<unsigned char>(c)));
        }
    }
    EXPECT_EQ(CertificateFingerprint::normalise(typed), fromPem);
    EXPECT_EQ(CertificateFingerprint::normalise(*fromPem), fromPem);
    EXPECT_FALSE(CertificateFingerprint::normalise(typed.substr(2)));
    EXPECT_FALSE(CertificateFingerprint::normalise(typed + "0"));
    EXPECT_FALSE(CertificateFingerprint::normalise("zz" + typed.substr(2)));
    EXPECT_FALSE(CertificateFingerprint::normalise(""));
    EXPECT_FALSE(CertificateFingerprint::ofPem("-----BEGIN CERTIFICATE-----\ngarbage\n"));
    EXPECT_FALSE(CertificateFingerprint::ofPem(""));
}

}  // namespace
}  // namespace tavren::tls
