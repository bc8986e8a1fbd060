#include "server/rooms/ChannelPassword.h"

#include <sodium.h>

#include <algorithm>
#include <stdexcept>

namespace tavren::server {

namespace {

constexpr unsigned long long kOpsLimit = 2;
constexpr std::size_t kMemLimit = 1 << 20;

void ensureSodium() {
    static const int status = sodium_init();
    if (status < 0) {
        throw std::runtime_error("libsodium could not be initialised");
    }
}

}  // namespace

std::string ChannelPassword::check(std::string_view password) {
    if (password.size() > kMaxLength) {
        return "a channel password has at most " + std::to_string(kMaxLength) + " characters.";
    }
    const bool control = std::any_of(password.begin(), password.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte < 32 || byte == 127;
    });
    if (control) {
        return "a channel password holds no control characters.";
    }
    return {};
}

std::string ChannelPassword::hash(std::string_view password) {
    ensureSodium();
    char out[crypto_pwhash_STRBYTES];
    if (crypto_pwhash_str_alg(out, password.data(), password.size(), kOpsLimit, kMemLimit,
                              crypto_pwhash_ALG_ARGON2ID13) != 0) {
        throw std::runtime_error("out of memory while hashing a channel password");
    }
    return out;
}

bool ChannelPassword::verify(const std::string& storedHash, std::string_view password) {
    ensureSodium();
    return crypto_pwhash_str_verify(storedHash.c_str(), password.data(), password.size()) == 0;
}

}  // namespace tavren::server
