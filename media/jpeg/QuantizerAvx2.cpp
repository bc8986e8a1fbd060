#include "media/jpeg/Quantizer.h"

#if defined(__GNUC__) && defined(__x86_64__)

#include <immintrin.h>

#include <bit>

#pragma GCC push_options
#pragma GCC target("avx2,bmi,bmi2,lzcnt")

namespace tavren::jpeg {
namespace {

// Eight coefficients to eight rounded 32-bit values.
inline __m256i Quantize8(__m128i coefficients, const float* multipliers) {
    const __m256 values = _mm256_cvtepi32_ps(_mm256_cvtepi16_epi32(coefficients));
    return _mm256_cvtps_epi32(_mm256_mul_ps(values, _mm256_loadu_ps(multipliers)));
}

}  // namespace

std::uint64_t Quantizer::QuantizeAvx2(const std::int16_t* coefficients, const float* multipliers,
                                      std::int16_t* packed) {
    const __m256i limit = _mm256_set1_epi16(kLimit);
    const __m256i negativeLimit = _mm256_set1_epi16(-kLimit);
    alignas(32) std::int16_t quantized[64];
    __m256i words[4];
    for (int i = 0; i < 4; ++i) {
        const __m256i in =
            _mm256_loadu_si256(reinterpret_cast<const __m256i*>(coefficients + 16 * i));
        const __m256i a = Quantize8(_mm256_castsi256_si128(in), multipliers + 16 * i);
        const __m256i b = Quantize8(_mm256_extracti128_si256(in, 1), multipliers + 16 * i + 8);
        // packs interleaves the 128-bit halves; the permute restores the order.
        __m256i w = _mm256_permute4x64_epi64(_mm256_packs_epi32(a, b), 0xD8);
        w = _mm256_max_epi16(_mm256_min_epi16(w, limit), negativeLimit);
        _mm256_store_si256(reinterpret_cast<__m256i*>(quantized + 16 * i), w);
        words[i] = w;
    }
    // Saturating packs keep zero and non-zero apart; the permutes undo their lane interleave.
    const __m256i zero = _mm256_setzero_si256();
    const __m256i low = _mm256_permute4x64_epi64(_mm256_packs_epi16(words[0], words[1]), 0xD8);
    const __m256i high = _mm256_permute4x64_epi64(_mm256_packs_epi16(words[2], words[3]), 0xD8);
    const auto zeroLow =
        static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(low, zero)));
    const auto zeroHigh =
        static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(high, zero)));
    const std::uint64_t nonzero = ~((static_cast<std::uint64_t>(zeroHigh) << 32) | zeroLow);

    packed[0] = quantized[0];
    std::int16_t* out = packed + 1;
    for (std::uint64_t rest = nonzero & ~std::uint64_t{1}; rest != 0; rest &= rest - 1) {
        *out++ = quantized[std::countr_zero(rest)];
    }
    return nonzero;
}

}  // namespace tavren::jpeg

#pragma GCC pop_options

#else

namespace tavren::jpeg {
std::uint64_t Quantizer::QuantizeAvx2(const std::int16_t* coefficients, const float* multipliers,
                                      std::int16_t* packed) {
    return QuantizeScalar(coefficients, multipliers, packed);
}
}  // namespace tavren::jpeg

#endif
