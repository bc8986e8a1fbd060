#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>

namespace tavren::protocol {

// The two command codes of a frame. Both sides hold them as signed 16-bit numbers; every code in
// use lies between 1 and 20, and a code above 32767 never reaches this type (the frame cutter
// refuses it first).
struct CodePair {
    std::int16_t cmd1 = 0;
    std::int16_t cmd2 = 0;

    friend constexpr bool operator==(const CodePair&, const CodePair&) = default;
    friend constexpr auto operator<=>(const CodePair&, const CodePair&) = default;
};

}  // namespace tavren::protocol

template <>
struct std::hash<tavren::protocol::CodePair> {
    std::size_t operator()(const tavren::protocol::CodePair& code) const noexcept {
        const auto high = static_cast<std::uint16_t>(code.cmd1);
        const auto low = static_cast<std::uint16_t>(code.cmd2);
        return std::hash<std::uint32_t>{}((std::uint32_t{high} << 16) | low);
    }
};
