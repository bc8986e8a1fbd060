#include "server/rooms/AddressRange.h"

#include <array>
#include <asio/ip/address.hpp>
#include <cstdio>

namespace tavren::server {

std::optional<std::string> AddressRange::of(std::string_view address) {
    asio::error_code error;
    const asio::ip::address parsed = asio::ip::make_address(std::string(address), error);
    if (error) {
        return std::nullopt;
    }
    asio::ip::address_v4 v4;
    if (parsed.is_v4()) {
        v4 = parsed.to_v4();
    } else if (parsed.to_v6().is_v4_mapped()) {
        v4 = asio::ip::make_address_v4(asio::ip::v4_mapped, parsed.to_v6());
    } else {
        const std::array<unsigned char, 16> bytes = parsed.to_v6().to_bytes();
        std::array<char, 48> text{};
        std::snprintf(text.data(), text.size(), "%x:%x:%x:%x::/64", bytes[0] << 8 | bytes[1],
                      bytes[2] << 8 | bytes[3], bytes[4] << 8 | bytes[5], bytes[6] << 8 | bytes[7]);
        return std::string(text.data());
    }
    const std::array<unsigned char, 4> bytes = v4.to_bytes();
    return std::to_string(bytes[0]) + "." + std::to_string(bytes[1]) + "." +
           std::to_string(bytes[2]) + ".0/24";
}

std::optional<std::string> AddressRange::ofPeer(std::string_view peerAddress) {
    const std::size_t colon = peerAddress.rfind(':');
    if (colon == std::string_view::npos) {
        return of(peerAddress);
    }
    return of(peerAddress.substr(0, colon));
}

std::optional<std::string> AddressRange::parse(std::string_view typed) {
    const std::size_t slash = typed.find('/');
    if (slash == std::string_view::npos) {
        return of(typed);
    }
    auto range = of(typed.substr(0, slash));
    if (!range || range->substr(range->find('/')) != typed.substr(slash)) {
        return std::nullopt;  // a prefix length other than the one bans use
    }
    return range;
}

}  // namespace tavren::server
