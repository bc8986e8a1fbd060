#pragma once

#include <cstdint>

namespace tavren::jpeg {

// The forward DCT with quantisation: one 8x8 block of fixed-point samples in, 64 quantised
// coefficients in zig-zag order out. The transform is the scaled floating-point method of Arai,
// Agui and Nakajima, run over the columns first and then over the rows; its output is left
// transposed (coefficient (row r, column c) in slot c * 8 + r), which is how the vector version
// naturally produces it, and the quantisation multipliers are laid out to match.
class ForwardDct {
  public:
    // Returns a mask with bit k set when zig-zag coefficient k is not zero.
    using Kernel = std::uint64_t (*)(const std::int16_t* samples, const float* multipliers,
                                     std::int16_t* zigzag);

    static constexpr int OutputSlotOfNatural(int natural) {
        return (natural % 8) * 8 + natural / 8;
    }

    // Baseline files allow DC values of 11 bits and AC values of 10 bits; results are kept there.
    static constexpr int kDcLimit = 1023;
    static constexpr int kAcLimit = 1023;

    static std::uint64_t QuantizeBlockScalar(const std::int16_t* samples, const float* multipliers,
                                             std::int16_t* zigzag);
    // Same results as the scalar version, bit for bit; callable only when the CPU has AVX2.
    static std::uint64_t QuantizeBlockAvx2(const std::int16_t* samples, const float* multipliers,
                                           std::int16_t* zigzag);

    // The fastest kernel this CPU runs.
    static Kernel Best();
};

}  // namespace tavren::jpeg
