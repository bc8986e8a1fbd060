#pragma once

#include <cstdint>

namespace tavren::jpeg {

// Quantises one block of zig-zag coefficients (ForwardDct's fixed point) and packs what the
// entropy coder needs: the DC value followed by the non-zero AC values, in zig-zag order.
// Returns a mask with bit k set when quantised coefficient k is not zero; the packed values
// number popcount(mask | 1). Results are kept within +-1023, the range of a baseline file.
class Quantizer {
  public:
    using Kernel = std::uint64_t (*)(const std::int16_t* coefficients, const float* multipliers,
                                     std::int16_t* packed);

    static constexpr int kLimit = 1023;

    static std::uint64_t QuantizeScalar(const std::int16_t* coefficients, const float* multipliers,
                                        std::int16_t* packed);
    // Same results as the scalar version; callable only when the CPU has AVX2 (AVX-512 with
    // VBMI2 respectively).
    static std::uint64_t QuantizeAvx2(const std::int16_t* coefficients, const float* multipliers,
                                      std::int16_t* packed);
    static std::uint64_t QuantizeAvx512(const std::int16_t* coefficients, const float* multipliers,
                                        std::int16_t* packed);

    static Kernel Best();
};

}  // namespace tavren::jpeg
