#pragma once

#include <string>

namespace tavren::server {

// The address of a member as the other end of a direct connection must know it: the address the
// server sees the member's connection come from, as plain text. An IPv4 address is dotted
// ("192.0.2.7"); an IPv4-mapped IPv6 address is the IPv4 address it carries (a dual-stack
// listener sees IPv4 clients that way); any other IPv6 address is its usual text ("2001:db8::7")
// without brackets, port or zone (a zone names an interface of this host, meaningless to the
// peer).
class RequesterAddress {
  public:
    // `peerAddress` is what the connection reports: the address, ":", the port. Empty when it
    // holds no address.
    static std::string fromPeer(const std::string& peerAddress);
};

}  // namespace tavren::server
