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
namespace {

// __m512 without its may_alias attribute, which a template argument cannot carry.
typedef float Float16 __attribute__((vector_size(64)));

// Per row of the transposed output, its eight scale factors twice (one copy per block).
struct PairScale {
    alignas(64) float values[8][16];
    constexpr PairScale() : values() {
        for (int u = 0; u < 8; ++u) {
            for (int i = 0; i < 16; ++i) {
                values[u][i] = kDctOutputScale[u * 8 + i % 8];
            }
        }
    }
};
constexpr PairScale kPairScale;

// The 8x8 transpose of vector::Transpose8x8, done on two blocks at once: block A in the low
// 256 bits of every register, block B in the high.
inline void TransposePair(Float16* r) {
    const __m512 t0 = _mm512_unpacklo_ps(r[0], r[1]);
    const __m512 t1 = _mm512_unpackhi_ps(r[0], r[1]);
    const __m512 t2 = _mm512_unpacklo_ps(r[2], r[3]);
    const __m512 t3 = _mm512_unpackhi_ps(r[2], r[3]);
    const __m512 t4 = _mm512_unpacklo_ps(r[4], r[5]);
    const __m512 t5 = _mm512_unpackhi_ps(r[4], r[5]);
    const __m512 t6 = _mm512_unpacklo_ps(r[6], r[7]);
    const __m512 t7 = _mm512_unpackhi_ps(r[6], r[7]);
    const __m512 s0 = _mm512_shuffle_ps(t0, t2, 0x44);
    const __m512 s1 = _mm512_shuffle_ps(t0, t2, 0xEE);
    const __m512 s2 = _mm512_shuffle_ps(t1, t3, 0x44);
    const __m512 s3 = _mm512_shuffle_ps(t1, t3, 0xEE);
    const __m512 s4 = _mm512_shuffle_ps(t4, t6, 0x44);
    const __m512 s5 = _mm512_shuffle_ps(t4, t6, 0xEE);
    const __m512 s6 = _mm512_shuffle_ps(t5, t7, 0x44);
    const __m512 s7 = _mm512_shuffle_ps(t5, t7, 0xEE);
    // Low quarters of each block's halves together, then the high quarters.
    const __m512i lowQuarters =
        _mm512_setr_epi32(0, 1, 2, 3, 16, 17, 18, 19, 8, 9, 10, 11, 24, 25, 26, 27);
    const __m512i highQuarters =
        _mm512_setr_epi32(4, 5, 6, 7, 20, 21, 22, 23, 12, 13, 14, 15, 28, 29, 30, 31);
    r[0] = _mm512_permutex2var_ps(s0, lowQuarters, s4);
    r[1] = _mm512_permutex2var_ps(s1, lowQuarters, s5);
    r[2] = _mm512_permutex2var_ps(s2, lowQuarters, s6);
    r[3] = _mm512_permutex2var_ps(s3, lowQuarters, s7);
    r[4] = _mm512_permutex2var_ps(s0, highQuarters, s4);
    r[5] = _mm512_permutex2var_ps(s1, highQuarters, s5);
    r[6] = _mm512_permutex2var_ps(s2, highQuarters, s6);
    r[7] = _mm512_permutex2var_ps(s3, highQuarters, s7);
}

void TransformPair(const std::int16_t* samples, std::int16_t* zigzag) {
    const AanConstants<Float16> k{
        _mm512_set1_ps(0.707106781186548f), _mm512_set1_ps(0.382683432365091f),
        _mm512_set1_ps(0.541196100146196f), _mm512_set1_ps(1.30656296487638f)};
    Float16 r[8];
    for (int y = 0; y < 8; ++y) {
        const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(samples + y * 8));
        const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(samples + 64 + y * 8));
        const __m256i rows = _mm256_inserti128_si256(_mm256_castsi128_si256(a), b, 1);
        r[y] = _mm512_cvtepi32_ps(_mm512_cvtepi16_epi32(rows));
    }
    AanForward(r, k);  // columns
    TransposePair(r);
    AanForward(r, k);  // rows: r[u] holds (lane v, u) of A, then of B

    // Row u of both blocks as 16-bit values: A's eight in the low half, B's in the high.
    __m256i rows[8];
    for (int u = 0; u < 8; ++u) {
        const __m512 scaled = _mm512_mul_ps(r[u], _mm512_load_ps(kPairScale.values[u]));
        rows[u] = _mm512_cvtsepi32_epi16(_mm512_cvtps_epi32(scaled));
    }
    // Gather each block's 64 slots into two registers, then permute them into zig-zag order.
    const __m512i rows01 = _mm512_inserti64x4(_mm512_castsi256_si512(rows[0]), rows[1], 1);
    const __m512i rows23 = _mm512_inserti64x4(_mm512_castsi256_si512(rows[2]), rows[3], 1);
    const __m512i rows45 = _mm512_inserti64x4(_mm512_castsi256_si512(rows[4]), rows[5], 1);
    const __m512i rows67 = _mm512_inserti64x4(_mm512_castsi256_si512(rows[6]), rows[7], 1);
    const __m512i lowA = _mm512_shuffle_i64x2(rows01, rows23, 0x88);
    const __m512i highA = _mm512_shuffle_i64x2(rows45, rows67, 0x88);
    const __m512i lowB = _mm512_shuffle_i64x2(rows01, rows23, 0xDD);
    const __m512i highB = _mm512_shuffle_i64x2(rows45, rows67, 0xDD);
    const __m512i first = _mm512_loadu_si512(kZigzagSlots.data());
    const __m512i second = _mm512_loadu_si512(kZigzagSlots.data() + 32);
    _mm512_storeu_si512(zigzag, _mm512_permutex2var_epi16(lowA, first, highA));
    _mm512_storeu_si512(zigzag + 32, _mm512_permutex2var_epi16(lowA, second, highA));
    _mm512_storeu_si512(zigzag + 64, _mm512_permutex2var_epi16(lowB, first, highB));
    _mm512_storeu_si512(zigzag + 96, _mm512_permutex2var_epi16(lowB, second, highB));
}

void TransformSingle(const std::int16_t* samples, std::int16_t* zigzag) {
    alignas(64) std::int16_t slots[64];
    vector::TransformToSlots(samples, slots);
    // Two word permutes across both halves put all 64 coefficients in zig-zag order.
    const __m512i low = _mm512_load_si512(slots);
    const __m512i high = _mm512_load_si512(slots + 32);
    const __m512i first = _mm512_loadu_si512(kZigzagSlots.data());
    const __m512i second = _mm512_loadu_si512(kZigzagSlots.data() + 32);
    _mm512_storeu_si512(zigzag, _mm512_permutex2var_epi16(low, first, high));
    _mm512_storeu_si512(zigzag + 32, _mm512_permutex2var_epi16(low, second, high));
}

}  // namespace

void ForwardDct::TransformAvx512(const std::int16_t* samples, std::int16_t* zigzag,
                                 std::size_t count) {
    std::size_t b = 0;
    for (; b + 2 <= count; b += 2) {
        TransformPair(samples + 64 * b, zigzag + 64 * b);
    }
    if (b < count) {
        TransformSingle(samples + 64 * b, zigzag + 64 * b);
    }
}

}  // namespace tavren::jpeg

#pragma GCC pop_options

#else

namespace tavren::jpeg {
void ForwardDct::TransformAvx512(const std::int16_t* samples, std::int16_t* zigzag,
                                 std::size_t count) {
    TransformScalar(samples, zigzag, count);
}
}  // namespace tavren::jpeg

#endif
