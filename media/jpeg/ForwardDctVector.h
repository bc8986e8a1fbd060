#pragma once

// The 256-bit body of the vector transforms, shared by the AVX2 and AVX-512 translation units
// and compiled into each under its own target (hence the unnamed namespace). Include after
// <immintrin.h>, the target pragma and AanTransform.h.

#include <cstdint>

#include "media/jpeg/ForwardDct.h"

namespace tavren::jpeg::vector {
namespace {

// __m256 without its may_alias attribute, which a template argument cannot carry.
typedef float Float8 __attribute__((vector_size(32)));

inline void Transpose8x8(Float8* r) {
    const __m256 t0 = _mm256_unpacklo_ps(r[0], r[1]);
    const __m256 t1 = _mm256_unpackhi_ps(r[0], r[1]);
    const __m256 t2 = _mm256_unpacklo_ps(r[2], r[3]);
    const __m256 t3 = _mm256_unpackhi_ps(r[2], r[3]);
    const __m256 t4 = _mm256_unpacklo_ps(r[4], r[5]);
    const __m256 t5 = _mm256_unpackhi_ps(r[4], r[5]);
    const __m256 t6 = _mm256_unpacklo_ps(r[6], r[7]);
    const __m256 t7 = _mm256_unpackhi_ps(r[6], r[7]);
    const __m256 s0 = _mm256_shuffle_ps(t0, t2, 0x44);
    const __m256 s1 = _mm256_shuffle_ps(t0, t2, 0xEE);
    const __m256 s2 = _mm256_shuffle_ps(t1, t3, 0x44);
    const __m256 s3 = _mm256_shuffle_ps(t1, t3, 0xEE);
    const __m256 s4 = _mm256_shuffle_ps(t4, t6, 0x44);
    const __m256 s5 = _mm256_shuffle_ps(t4, t6, 0xEE);
    const __m256 s6 = _mm256_shuffle_ps(t5, t7, 0x44);
    const __m256 s7 = _mm256_shuffle_ps(t5, t7, 0xEE);
    r[0] = _mm256_permute2f128_ps(s0, s4, 0x20);
    r[1] = _mm256_permute2f128_ps(s1, s5, 0x20);
    r[2] = _mm256_permute2f128_ps(s2, s6, 0x20);
    r[3] = _mm256_permute2f128_ps(s3, s7, 0x20);
    r[4] = _mm256_permute2f128_ps(s0, s4, 0x31);
    r[5] = _mm256_permute2f128_ps(s1, s5, 0x31);
    r[6] = _mm256_permute2f128_ps(s2, s6, 0x31);
    r[7] = _mm256_permute2f128_ps(s3, s7, 0x31);
}

// Transforms one block and stores the scaled, rounded coefficients in slot order.
inline void TransformToSlots(const std::int16_t* samples, std::int16_t* slots) {
    const AanConstants<Float8> k{
        _mm256_set1_ps(0.707106781186548f), _mm256_set1_ps(0.382683432365091f),
        _mm256_set1_ps(0.541196100146196f), _mm256_set1_ps(1.30656296487638f)};
    Float8 r[8];
    for (int y = 0; y < 8; ++y) {
        const __m128i row = _mm_loadu_si128(reinterpret_cast<const __m128i*>(samples + y * 8));
        r[y] = _mm256_cvtepi32_ps(_mm256_cvtepi16_epi32(row));
    }
    AanForward(r, k);  // columns: r[v] holds vertical frequency v of every column
    Transpose8x8(r);
    AanForward(r, k);  // rows: r[u] holds (lane v, u)
    for (int i = 0; i < 4; ++i) {
        const __m256i a = _mm256_cvtps_epi32(
            _mm256_mul_ps(r[2 * i], _mm256_loadu_ps(kDctOutputScale.data() + 16 * i)));
        const __m256i b = _mm256_cvtps_epi32(
            _mm256_mul_ps(r[2 * i + 1], _mm256_loadu_ps(kDctOutputScale.data() + 16 * i + 8)));
        // packs interleaves the 128-bit halves; the permute puts the slots back in order.
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(slots + 16 * i),
                            _mm256_permute4x64_epi64(_mm256_packs_epi32(a, b), 0xD8));
    }
}

}  // namespace
}  // namespace tavren::jpeg::vector
