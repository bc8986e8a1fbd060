#include "server/contacts/RequesterAddress.h"

#include <asio/ip/address.hpp>

namespace tavren::server {

std::string RequesterAddress::fromPeer(const std::string& peerAddress) {
    // The port follows the last ":"; an IPv6 address keeps its own colons before it.
    const std::size_t colon = peerAddress.rfind(':');
    std::string text = colon == std::string::npos ? peerAddress : peerAddress.substr(0, colon);
    if (text.size() >= 2 && text.front() == '[' && text.back() == ']') {
        text = text.substr(1, text.size() - 2);
    }
    asio::error_code error;
    const asio::ip::address address = asio::ip::make_address(text, error);
    if (error) {
        return {};
    }
    if (address.is_v4()) {
        return address.to_string();
    }
    asio::ip::address_v6 v6 = address.to_v6();
    if (v6.is_v4_mapped()) {
        return asio::ip::make_address_v4(asio::ip::v4_mapped, v6).to_string();
    }
    v6.scope_id(0);
    return v6.to_string();
}

}  // namespace tavren::server
