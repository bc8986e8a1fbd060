#include "tls/SelfSignedCertificate.h"

#include <openssl/bio.h>
#include <openssl/bn.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <array>
#include <memory>
#include <stdexcept>

namespace tavren::tls {

namespace {

template <typename T, void (*Free)(T*)>
struct Deleter {
    void operator()(T* p) const { Free(p); }
};
using KeyPtr = std::unique_ptr<EVP_PKEY, Deleter<EVP_PKEY, EVP_PKEY_free>>;
using CertificatePtr = std::unique_ptr<X509, Deleter<X509, X509_free>>;
using BioPtr = std::unique_ptr<BIO, Deleter<BIO, BIO_free_all>>;
using ExtensionPtr = std::unique_ptr<X509_EXTENSION, Deleter<X509_EXTENSION, X509_EXTENSION_free>>;

[[noreturn]] void fail(const char* what) {
    throw std::runtime_error(std::string("could not make a certificate: ") + what);
}

void check(int result, const char* what) {
    if (result != 1) {
        fail(what);
    }
}

std::string pemText(BIO* bio) {
    char* data = nullptr;
    const long size = BIO_get_mem_data(bio, &data);
    return std::string(data, static_cast<std::size_t>(size));
}

void addExtension(X509* certificate, int id, const std::string& value) {
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, certificate, certificate, nullptr, nullptr, 0);
    ExtensionPtr extension(X509V3_EXT_conf_nid(nullptr, &context, id, value.c_str()));
    if (!extension) {
        fail("extension");
    }
    check(X509_add_ext(certificate, extension.get(), -1), "extension");
}

}  // namespace

SelfSignedCertificate SelfSignedCertificate::generate(const std::string& commonName,
                                                      int validDays) {
    KeyPtr key(EVP_EC_gen("P-256"));
    if (!key) {
        fail("key");
    }
    CertificatePtr certificate(X509_new());
    if (!certificate) {
        fail("certificate");
    }
    check(X509_set_version(certificate.get(), 2), "version");
    // A random serial, so that two certificates of one name are never taken for one another.
    std::array<unsigned char, 16> serialBytes{};
    check(RAND_bytes(serialBytes.data(), static_cast<int>(serialBytes.size())), "serial");
    serialBytes[0] &= 0x7F;  // positive
    std::unique_ptr<BIGNUM, Deleter<BIGNUM, BN_free>> serial(
        BN_bin2bn(serialBytes.data(), static_cast<int>(serialBytes.size()), nullptr));
    if (!serial || !BN_to_ASN1_INTEGER(serial.get(), X509_get_serialNumber(certificate.get()))) {
        fail("serial");
    }
    if (!X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -3600) ||
        !X509_gmtime_adj(X509_getm_notAfter(certificate.get()), 86400L * validDays)) {
        fail("validity");
    }
    X509_NAME* name = X509_get_subject_name(certificate.get());
    check(X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_UTF8,
                                     reinterpret_cast<const unsigned char*>(commonName.c_str()), -1,
                                     -1, 0),
          "name");
    check(X509_set_issuer_name(certificate.get(), name), "issuer");
    check(X509_set_pubkey(certificate.get(), key.get()), "public key");
    addExtension(certificate.get(), NID_basic_constraints, "critical,CA:FALSE");
    addExtension(certificate.get(), NID_subject_alt_name, "DNS:" + commonName);
    if (X509_sign(certificate.get(), key.get(), EVP_sha256()) <= 0) {
        fail("signature");
    }

    BioPtr certificateBio(BIO_new(BIO_s_mem()));
    BioPtr keyBio(BIO_new(BIO_s_mem()));
    if (!certificateBio || !keyBio) {
        fail("memory");
    }
    check(PEM_write_bio_X509(certificateBio.get(), certificate.get()), "PEM");
    check(PEM_write_bio_PrivateKey(keyBio.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr),
          "PEM");
    return {pemText(certificateBio.get()), pemText(keyBio.get())};
}

}  // namespace tavren::tls
