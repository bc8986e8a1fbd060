#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tavren::server {

// The range a subnet ban covers: an IPv4 address's /24 ("203.0.113.0/24") and an IPv6 address's
// /64 ("2001:db8:1:2::/64"). A proxy or a dial-up pool hands out addresses from such a block, and
// one subscriber usually holds a whole IPv6 /64; anything wider would shut out bystanders. An
// IPv4 address carried in IPv6 (::ffff:a.b.c.d) counts as the IPv4 address it is.
class AddressRange {
  public:
    // The range of an address, or nothing for text that is no address.
    static std::optional<std::string> of(std::string_view address);
    // The range of a connection's peer as the network layer writes it, "address:port".
    static std::optional<std::string> ofPeer(std::string_view peerAddress);
    // What staff typed to name a range: an address, or a range in the form above (any address in
    // it, with or without its "/24" or "/64"). Nothing when it is neither.
    static std::optional<std::string> parse(std::string_view typed);
};

}  // namespace tavren::server
