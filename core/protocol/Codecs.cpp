#include "core/protocol/Codecs.h"

#include <cmath>

namespace tavren::protocol {
namespace {

constexpr double kTwoPow32 = 4294967296.0;

// Cuts the fraction and folds the value into 0 .. 2^32 - 1, the range the four length bytes hold.
std::uint32_t WrapToUint32(double value) {
    if (!std::isfinite(value)) {
        return 0;
    }
    double whole = std::fmod(std::trunc(value), kTwoPow32);
    if (whole < 0) {
        whole += kTwoPow32;
    }
    return static_cast<std::uint32_t>(whole);
}

int ByteAt(std::string_view bytes, std::size_t index) {
    return index < bytes.size() ? static_cast<unsigned char>(bytes[index]) : 0;
}

}  // namespace

std::string EncodeWord16(std::int32_t value) {
    const auto word = static_cast<std::uint16_t>(value);
    return {static_cast<char>(word / 256), static_cast<char>(word % 256)};
}

std::string EncodeLength32(double length) {
    const std::uint32_t value = WrapToUint32(length);
    const std::uint32_t high = value / 65536;
    const std::uint32_t low = value - 65536 * high;
    return EncodeWord16(static_cast<std::int32_t>(high)) +
           EncodeWord16(static_cast<std::int32_t>(low));
}

std::int32_t DecodeWord16(std::string_view bytes) {
    return ByteAt(bytes, 0) * 256 + ByteAt(bytes, 1);
}

double DecodeLength32(std::string_view bytes) {
    const std::string_view high = bytes.substr(0, 2);
    const std::string_view low = bytes.size() > 2 ? bytes.substr(2, 2) : std::string_view{};
    return DecodeWord16(high) * 65536.0 + DecodeWord16(low);
}

std::string NumberToDottedQuad(double number) {
    const std::string bytes = EncodeLength32(number);
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i > 0) {
            text += '.';
        }
        text += std::to_string(static_cast<unsigned char>(bytes[i]));
    }
    return text;
}

}  // namespace tavren::protocol
