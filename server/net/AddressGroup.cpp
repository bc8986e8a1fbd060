#include "server/net/AddressGroup.h"

#include <array>
#include <cstdio>

namespace tavren::server {

std::string AddressGroup::of(const asio::ip::address& address) {
    if (address.is_v4()) {
        return address.to_string();
    }
    const asio::ip::address_v6 v6 = address.to_v6();
    if (v6.is_v4_mapped()) {
        return asio::ip::make_address_v4(asio::ip::v4_mapped, v6).to_string();
    }
    const std::array<unsigned char, 16> bytes = v6.to_bytes();
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), "%x:%x:%x:%x::/64", bytes[0] << 8 | bytes[1],
                  bytes[2] << 8 | bytes[3], bytes[4] << 8 | bytes[5], bytes[6] << 8 | bytes[7]);
    return text.data();
}

std::string AddressGroup::ofText(const std::string& text) {
    asio::error_code error;
    const asio::ip::address address = asio::ip::make_address(text, error);
    return error ? text : of(address);
}

}  // namespace tavren::server
