#include "media/jpeg/ForwardDct.h"

#if defined(__GNUC__) && defined(__x86_64__)

// GCC 12's AVX-512 headers trip its own uninitialised-variable check (their "undefined"
// vectors are self-initialised on purpose).
#pragma GCC diagnostic ignored "-Wuninitialized"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"

#include <immintrin.h>

#pragma GCC push_options
#pragma GCC target("avx512f,avx512bw,avx512vl,avx512dq,avx2,bmi,bmi2,lzcnt")

#include "media/jpeg/AanTransform.h"
#include "media/jpeg/ForwardDctVector.h"

namespace tavren::jpeg {

void ForwardDct::TransformAvx512(const std::int16_t* samples, std::int16_t* zigzag) {
    alignas(64) std::int16_t slots[64];
    vector::TransformToSlots(samples, slots);
    // Two word permutes across both halves put all 64 coefficients in zig-zag order.
    const __m512i low = _mm512_load_si512(slots);
    const __m512i high = _mm512_load_si512(slots + 32);
    const __m512i firstIndex = _mm512_loadu_si512(kZigzagSlots.data());
    const __m512i secondIndex = _mm512_loadu_si512(kZigzagSlots.data() + 32);
    _mm512_storeu_si512(zigzag, _mm512_permutex2var_epi16(low, firstIndex, high));
    _mm512_storeu_si512(zigzag + 32, _mm512_permutex2var_epi16(low, secondIndex, high));
}

}  // namespace tavren::jpeg

#pragma GCC pop_options

#else

namespace tavren::jpeg {
void ForwardDct::TransformAvx512(const std::int16_t* samples, std::int16_t* zigzag) {
    TransformScalar(samples, zigzag);
}
}  // namespace tavren::jpeg

#endif
