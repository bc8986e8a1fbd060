#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tavren::server {

// A protected channel's password. It is kept only as an argon2id hash, like account passwords,
// but a cheap one (about a millisecond): it is checked on the network thread at every join that
// carries it, it guards a room rather than an account, and every try costs the member a line of
// the line meter, so guessing is slow anyway.
class ChannelPassword {
  public:
    static constexpr std::size_t kMaxLength = 32;

    // Empty when acceptable, else the rule it breaks, worded to follow "You cannot create "NAME":
    // ". (No ":" can reach here: it ends the field on the wire.)
    static std::string check(std::string_view password);
    static std::string hash(std::string_view password);
    static bool verify(const std::string& storedHash, std::string_view password);
};

}  // namespace tavren::server
