#include "media/jpeg/Quantizer.h"

#if defined(__GNUC__) && defined(__x86_64__)

// GCC 12's AVX-512 headers trip its own uninitialised-variable check (their "undefined"
// vectors are self-initialised on purpose).
#pragma GCC diagnostic ignored "-Wuninitialized"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"

#include <immintrin.h>

#include <bit>

#pragma GCC push_options
#pragma GCC target("avx512f,avx512bw,avx512vl,avx512dq,avx512vbmi2,avx2,bmi,bmi2,lzcnt,popcnt")

namespace tavren::jpeg {
namespace {

// Sixteen coefficients to sixteen rounded, limited 16-bit values.
inline __m256i Quantize16(__m256i coefficients, const float* multipliers) {
    const __m512 values = _mm512_cvtepi32_ps(_mm512_cvtepi16_epi32(coefficients));
    __m512i rounded = _mm512_cvtps_epi32(_mm512_mul_ps(values, _mm512_loadu_ps(multipliers)));
    rounded = _mm512_max_epi32(_mm512_min_epi32(rounded, _mm512_set1_epi32(Quantizer::kLimit)),
                               _mm512_set1_epi32(-Quantizer::kLimit));
    return _mm512_cvtepi32_epi16(rounded);
}

}  // namespace

std::uint64_t Quantizer::QuantizeAvx512(const std::int16_t* coefficients, const float* multipliers,
                                        std::int16_t* packed) {
    std::uint64_t nonzero = 0;
    std::int16_t* out = packed;
    for (int half = 0; half < 2; ++half) {
        const __m512i in = _mm512_loadu_si512(coefficients + 32 * half);
        const __m256i a = Quantize16(_mm512_castsi512_si256(in), multipliers + 32 * half);
        const __m256i b =
            Quantize16(_mm512_extracti64x4_epi64(in, 1), multipliers + 32 * half + 16);
        const __m512i words = _mm512_inserti64x4(_mm512_castsi256_si512(a), b, 1);
        const __mmask32 mask = _mm512_test_epi16_mask(words, words);
        // The DC value is always kept, zero or not.
        const __mmask32 keep = half == 0 ? (mask | 1u) : mask;
        _mm512_mask_compressstoreu_epi16(out, keep, words);
        out += std::popcount(static_cast<std::uint32_t>(keep));
        nonzero |= static_cast<std::uint64_t>(mask) << (32 * half);
    }
    return nonzero;
}

}  // namespace tavren::jpeg

#pragma GCC pop_options

#else

namespace tavren::jpeg {
std::uint64_t Quantizer::QuantizeAvx512(const std::int16_t* coefficients, const float* multipliers,
                                        std::int16_t* packed) {
    return QuantizeScalar(coefficients, multipliers, packed);
}
}  // namespace tavren::jpeg

#endif
