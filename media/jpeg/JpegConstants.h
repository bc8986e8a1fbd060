#pragma once

#include <array>
#include <cstdint>

namespace tavren::jpeg {

// Position in an 8x8 block (row * 8 + column) of the k-th coefficient in zig-zag order.
inline constexpr std::array<std::uint8_t, 64> kZigzagToNatural = {
    0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,  12, 19, 26, 33, 40, 48,
    41, 34, 27, 20, 13, 6,  7,  14, 21, 28, 35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23,
    30, 37, 44, 51, 58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63};

namespace detail {
constexpr std::array<std::uint16_t, 64> ToZigzag(const std::array<std::uint16_t, 64>& natural) {
    std::array<std::uint16_t, 64> zigzag{};
    for (int k = 0; k < 64; ++k) {
        zigzag[k] = natural[kZigzagToNatural[k]];
    }
    return zigzag;
}
}  // namespace detail

// The example tables of the JPEG standard (ITU-T T.81, tables K.1 and K.2), written here row by
// row as the standard prints them and kept in zig-zag order, the order DQT stores them in.
inline constexpr std::array<std::uint16_t, 64> kLuminanceBase =
    detail::ToZigzag({16, 11, 10, 16, 24,  40,  51,  61,   //
                      12, 12, 14, 19, 26,  58,  60,  55,   //
                      14, 13, 16, 24, 40,  57,  69,  56,   //
                      14, 17, 22, 29, 51,  87,  80,  62,   //
                      18, 22, 37, 56, 68,  109, 103, 77,   //
                      24, 35, 55, 64, 81,  104, 113, 92,   //
                      49, 64, 78, 87, 103, 121, 120, 101,  //
                      72, 92, 95, 98, 112, 100, 103, 99});

inline constexpr std::array<std::uint16_t, 64> kChrominanceBase =
    detail::ToZigzag({17, 18, 24, 47, 99, 99, 99, 99,  //
                      18, 21, 26, 66, 99, 99, 99, 99,  //
                      24, 26, 56, 99, 99, 99, 99, 99,  //
                      47, 66, 99, 99, 99, 99, 99, 99,  //
                      99, 99, 99, 99, 99, 99, 99, 99,  //
                      99, 99, 99, 99, 99, 99, 99, 99,  //
                      99, 99, 99, 99, 99, 99, 99, 99,  //
                      99, 99, 99, 99, 99, 99, 99, 99});

// The scaled DCT of Arai, Agui and Nakajima leaves output k multiplied by 1 / factor[k]; these
// factors, 1 / (2 sqrt(2) a(k)) with a(0) = 1 and a(k) = sqrt(2) cos(k pi / 16), are folded into
// the quantisation divisors so the transform itself needs only five multiplications.
inline constexpr std::array<double, 8> kDctScaleFactors = {
    0.353553390593273, 0.25489778955208,  0.270598050073098, 0.300672443467523,
    0.353553390593273, 0.449988111568207, 0.653281482438186, 1.28145772387074};

// Samples are kept as fixed point with this many fractional bits, level-shifted to centre on 0,
// so that averaging for sub-sampling loses nothing before the transform.
inline constexpr int kSampleFractionBits = 3;
inline constexpr int kSampleOne = 1 << kSampleFractionBits;

}  // namespace tavren::jpeg
