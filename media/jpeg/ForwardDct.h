#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "media/jpeg/JpegConstants.h"

namespace tavren::jpeg {

// The forward DCT of one 8x8 block: fixed-point samples in, the 64 coefficients out in zig-zag
// order as fixed point with kCoefficientFractionBits, ready for quantisation at any quality.
// The transform is the scaled floating-point method of Arai, Agui and Nakajima, over the
// columns first and then over the rows; its scale factors are applied on the way out.
class ForwardDct {
  public:
    // Transforms `count` consecutive blocks.
    using Kernel = void (*)(const std::int16_t* samples, std::int16_t* zigzag, std::size_t count);

    static constexpr int kCoefficientFractionBits = 4;
    static constexpr int kCoefficientOne = 1 << kCoefficientFractionBits;

    // The transform leaves coefficient (row r, column c) in slot c * 8 + r: transposed, which is
    // how the vector version produces it.
    static constexpr int OutputSlotOfNatural(int natural) {
        return (natural % 8) * 8 + natural / 8;
    }

    static void TransformScalar(const std::int16_t* samples, std::int16_t* zigzag,
                                std::size_t count);
    // The vector versions give the same coefficients as the scalar one, bit for bit; callable
    // only when the CPU has AVX2 (AVX-512 respectively).
    static void TransformAvx2(const std::int16_t* samples, std::int16_t* zigzag, std::size_t count);
    static void TransformAvx512(const std::int16_t* samples, std::int16_t* zigzag,
                                std::size_t count);

    // The fastest kernel this CPU runs.
    static Kernel Best();
};

namespace detail {

// Per output slot: the transform's scale factors times the change from sample to coefficient
// fixed point.
constexpr std::array<float, 64> MakeDctOutputScale() {
    std::array<float, 64> scale{};
    for (int natural = 0; natural < 64; ++natural) {
        scale[ForwardDct::OutputSlotOfNatural(natural)] =
            static_cast<float>(kDctScaleFactors[natural / 8] * kDctScaleFactors[natural % 8] *
                               ForwardDct::kCoefficientOne / kSampleOne);
    }
    return scale;
}

// Per zig-zag position, the output slot holding it.
constexpr std::array<std::uint16_t, 64> MakeZigzagSlots() {
    std::array<std::uint16_t, 64> slots{};
    for (int k = 0; k < 64; ++k) {
        slots[k] = static_cast<std::uint16_t>(ForwardDct::OutputSlotOfNatural(kZigzagToNatural[k]));
    }
    return slots;
}

}  // namespace detail

inline constexpr std::array<float, 64> kDctOutputScale = detail::MakeDctOutputScale();
inline constexpr std::array<std::uint16_t, 64> kZigzagSlots = detail::MakeZigzagSlots();

}  // namespace tavren::jpeg
