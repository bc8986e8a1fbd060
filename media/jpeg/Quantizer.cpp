#include "media/jpeg/Quantizer.h"

#include <algorithm>
#include <cmath>

#include "media/jpeg/CpuFeatures.h"

namespace tavren::jpeg {

std::uint64_t Quantizer::QuantizeScalar(const std::int16_t* coefficients, const float* multipliers,
                                        std::int16_t* packed) {
    std::uint64_t nonzero = 0;
    std::int16_t* out = packed;
    for (int k = 0; k < 64; ++k) {
        // Round half to even, as the vector conversion does.
        const long value = std::lrint(static_cast<float>(coefficients[k]) * multipliers[k]);
        const auto q = static_cast<std::int16_t>(std::clamp<long>(value, -kLimit, kLimit));
        if (q != 0 || k == 0) {
            *out++ = q;
        }
        nonzero |= static_cast<std::uint64_t>(q != 0) << k;
    }
    return nonzero;
}

Quantizer::Kernel Quantizer::Best() {
    if (CpuFeatures::HasAvx512()) {
        return &QuantizeAvx512;
    }
    return CpuFeatures::HasAvx2() ? &QuantizeAvx2 : &QuantizeScalar;
}

}  // namespace tavren::jpeg
