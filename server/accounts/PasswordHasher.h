#pragma once

#include <string>
#include <string_view>

namespace tavren::server {

// Passwords are kept only as argon2id hashes in libsodium's self-describing string form, so the
// cost parameters travel with each hash and can be raised later without breaking old accounts.
// Hashing costs tens of milliseconds and 64 MiB of memory by design: call it off the network
// thread.
class PasswordHasher {
  public:
    // Throws std::runtime_error when libsodium cannot start or the memory is not available.
    static std::string hash(std::string_view password);
    static bool verify(const std::string& storedHash, std::string_view password);
    // Spends the same time as a real verification and always fails; used for unknown names, so
    // that how long a refusal takes does not tell whether the name exists.
    static void verifyAgainstDecoy(std::string_view password);
};

}  // namespace tavren::server
