#include "media/jpeg/ForwardDct.h"

#if defined(__GNUC__) && defined(__x86_64__)

#include <immintrin.h>

#pragma GCC push_options
#pragma GCC target("avx2,bmi,bmi2,lzcnt")

#include "media/jpeg/AanTransform.h"
#include "media/jpeg/ForwardDctVector.h"

namespace tavren::jpeg {

void ForwardDct::TransformAvx2(const std::int16_t* samples, std::int16_t* zigzag,
                               std::size_t count) {
    alignas(32) std::int16_t slots[64];
    for (std::size_t b = 0; b < count; ++b, samples += 64, zigzag += 64) {
        vector::TransformToSlots(samples, slots);
        for (int i = 0; i < 64; ++i) {
            zigzag[i] = slots[kZigzagSlots[i]];
        }
    }
}

}  // namespace tavren::jpeg

#pragma GCC pop_options

#else

namespace tavren::jpeg {
void ForwardDct::TransformAvx2(const std::int16_t* samples, std::int16_t* zigzag,
                               std::size_t count) {
    TransformScalar(samples, zigzag, count);
}
}  // namespace tavren::jpeg

#endif
