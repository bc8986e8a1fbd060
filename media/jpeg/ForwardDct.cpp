#include "media/jpeg/ForwardDct.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "media/jpeg/AanTransform.h"
#include "media/jpeg/CpuFeatures.h"

namespace tavren::jpeg {

namespace {

void TransformBlock(const std::int16_t* samples, std::int16_t* zigzag) {
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
            // Round half to even and saturate, as the vector conversion and packing do.
            const long value = std::lrint(rows[v][u] * kDctOutputScale[slot]);
            slots[slot] = static_cast<std::int16_t>(
                std::clamp<long>(value, std::numeric_limits<std::int16_t>::min(),
                                 std::numeric_limits<std::int16_t>::max()));
        }
    }
    for (int i = 0; i < 64; ++i) {
        zigzag[i] = slots[kZigzagSlots[i]];
    }
}

}  // namespace

void ForwardDct::TransformScalar(const std::int16_t* samples, std::int16_t* zigzag,
                                 std::size_t count) {
    for (std::size_t b = 0; b < count; ++b) {
        TransformBlock(samples + 64 * b, zigzag + 64 * b);
    }
}

ForwardDct::Kernel ForwardDct::Best() {
    if (CpuFeatures::HasAvx512()) {
        return &TransformAvx512;
    }
    return CpuFeatures::HasAvx2() ? &TransformAvx2 : &TransformScalar;
}

}  // namespace tavren::jpeg
