#include "server/accounts/PasswordHasher.h"

#include <sodium.h>

#include <stdexcept>

namespace tavren::server {

namespace {

void ensureSodium() {
    static const int status = sodium_init();
    if (status < 0) {
        throw std::runtime_error("libsodium could not be initialised");
    }
}

}  // namespace

std::string PasswordHasher::hash(std::string_view password) {
    ensureSodium();
    char out[crypto_pwhash_STRBYTES];
    if (crypto_pwhash_str_alg(
            out, password.data(), password.size(), crypto_pwhash_OPSLIMIT_INTERACTIVE,
            crypto_pwhash_MEMLIMIT_INTERACTIVE, crypto_pwhash_ALG_ARGON2ID13) != 0) {
        throw std::runtime_error("out of memory while hashing a password");
    }
    return out;
}

bool PasswordHasher::verify(const std::string& storedHash, std::string_view password) {
    ensureSodium();
    return crypto_pwhash_str_verify(storedHash.c_str(), password.data(), password.size()) == 0;
}

void PasswordHasher::verifyAgainstDecoy(std::string_view password) {
    // The hash of 32 random bytes that were thrown away, made with the same costs as hash(), so
    // checking against it takes as long as checking a real account.
    static const std::string decoy =
        "$argon2id$v=19$m=65536,t=2,p=1$J/E9xLsTfzSbJBm3nRZqjg$"
        "0Q6rDNmAfoiNoKy1LDHfmxIgPZn+jZQocIQ1EddTFWQ";
    (void)verify(decoy, password);
}

}  // namespace tavren::server
