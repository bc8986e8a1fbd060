#include "media/jpeg/ForwardDct.h"

#include <algorithm>
#include <cmath>

#include "media/jpeg/AanTransform.h"
#include "media/jpeg/CpuFeatures.h"
#include "media/jpeg/JpegConstants.h"

namespace tavren::jpeg {

std::uint64_t ForwardDct::QuantizeBlockScalar(const std::int16_t* samples, const float* multipliers,
                                              std::int16_t* zigzag) {
    const AanConstants<float> k{0.707106781186548f, 0.382683432365091f, 0.541196100146196f,
                                1.30656296487638f};
    float rows[8][8];  // rows[v][x] after the column pass
    for (int x = 0; x < 8; ++x) {
        float column[8];
        for (int y = 0; y < 8; ++y) {
            column[y] = static_cast<float>(samples[y * 8 + x]);
        }
        AanForward(column, k);
        for (int v = 0; v < 8; ++v) {
            rows[v][x] = column[v];
        }
    }
    std::int16_t slots[64];
    for (int v = 0; v < 8; ++v) {
        AanForward(rows[v], k);
        for (int u = 0; u < 8; ++u) {
            const int slot = u * 8 + v;
            // Round half to even, as the vector conversion does.
            const long q = std::lrint(rows[v][u] * multipliers[slot]);
            const long limit = slot == 0 ? kDcLimit : kAcLimit;
            slots[slot] = static_cast<std::int16_t>(std::clamp(q, -limit, limit));
        }
    }
    std::uint64_t nonzero = 0;
    for (int i = 0; i < 64; ++i) {
        zigzag[i] = slots[OutputSlotOfNatural(kZigzagToNatural[i])];
        nonzero |= static_cast<std::uint64_t>(zigzag[i] != 0) << i;
    }
    return nonzero;
}

ForwardDct::Kernel ForwardDct::Best() {
    return CpuFeatures::HasAvx2() ? &QuantizeBlockAvx2 : &QuantizeBlockScalar;
}

}  // namespace tavren::jpeg
