#pragma once

#include <asio/ip/address.hpp>
#include <string>

namespace tavren::server {

// The key under which per-address limits count a client. An IPv4 address stands for itself
// (an IPv4-mapped IPv6 address counts as the IPv4 address it carries); an IPv6 address counts
// as its /64, because one subscriber is usually handed a whole /64 and could otherwise step
// around every per-address limit by changing the low bits.
class AddressGroup {
  public:
    static std::string of(const asio::ip::address& address);
    // Parses `text` first; text that is no address (a test's made-up peer) is its own group.
    static std::string ofText(const std::string& text);
};

}  // namespace tavren::server
