#include "media/jpeg/ColorConversion.h"
#include "media/jpeg/ColorSampler.h"

#if defined(__GNUC__) && defined(__x86_64__)

#include <immintrin.h>

#include <algorithm>

#pragma GCC push_options
#pragma GCC target("avx2,bmi,bmi2,lzcnt")

namespace tavren::jpeg {
namespace {

inline __m256i LoadTwoHalves(const std::uint8_t* low, const std::uint8_t* high) {
    const __m128i lo = _mm_loadu_si128(reinterpret_cast<const __m128i*>(low));
    const __m128i hi = _mm_loadu_si128(reinterpret_cast<const __m128i*>(high));
    return _mm256_inserti128_si256(_mm256_castsi128_si256(lo), hi, 1);
}

inline __m256i WeightPair(int first, int second) {
    return _mm256_set1_epi32(static_cast<int>((static_cast<std::uint32_t>(second) << 16) |
                                              static_cast<std::uint16_t>(first)));
}

// Sixteen pixels (48 bytes) spread into 16-bit words, each 128-bit lane holding eight pixels:
// red/green pairs and blue/zero pairs, for pixels 0-3 and 4-7 of the lane.
struct PixelWords {
    __m256i redGreenLow;
    __m256i blueLow;
    __m256i redGreenHigh;
    __m256i blueHigh;
};

struct Shuffles {
    __m256i redGreenLow;
    __m256i blueLow;
    __m256i redGreenHigh;
    __m256i blueHigh;
};

inline Shuffles MakeShuffles() {
    Shuffles s;
    s.redGreenLow = _mm256_setr_epi8(0, -1, 1, -1, 3, -1, 4, -1, 6, -1, 7, -1, 9, -1, 10, -1,  //
                                     0, -1, 1, -1, 3, -1, 4, -1, 6, -1, 7, -1, 9, -1, 10, -1);
    s.blueLow = _mm256_setr_epi8(2, -1, -1, -1, 5, -1, -1, -1, 8, -1, -1, -1, 11, -1, -1, -1,  //
                                 2, -1, -1, -1, 5, -1, -1, -1, 8, -1, -1, -1, 11, -1, -1, -1);
    s.redGreenHigh =
        _mm256_setr_epi8(4, -1, 5, -1, 7, -1, 8, -1, 10, -1, 11, -1, 13, -1, 14, -1,  //
                         4, -1, 5, -1, 7, -1, 8, -1, 10, -1, 11, -1, 13, -1, 14, -1);
    s.blueHigh = _mm256_setr_epi8(6, -1, -1, -1, 9, -1, -1, -1, 12, -1, -1, -1, 15, -1, -1, -1,  //
                                  6, -1, -1, -1, 9, -1, -1, -1, 12, -1, -1, -1, 15, -1, -1, -1);
    return s;
}

// Sixteen pixels of three bytes R, G, B (48 bytes).
inline PixelWords LoadRgb24(const std::uint8_t* p, const Shuffles& s) {
    // Lane 0 gets pixels 0-7, lane 1 pixels 8-15; the two loads overlap so that every pixel of
    // a lane lies inside one of them, and nothing past the 48 bytes is read.
    const __m256i a = LoadTwoHalves(p, p + 24);
    const __m256i b = LoadTwoHalves(p + 8, p + 32);
    return {_mm256_shuffle_epi8(a, s.redGreenLow), _mm256_shuffle_epi8(a, s.blueLow),
            _mm256_shuffle_epi8(b, s.redGreenHigh), _mm256_shuffle_epi8(b, s.blueHigh)};
}

// Sixteen pixels of four bytes B, G, R, unused (64 bytes), spread the same way.
inline PixelWords LoadBgrx32(const std::uint8_t* p) {
    const __m256i redGreen =
        _mm256_setr_epi8(2, -1, 1, -1, 6, -1, 5, -1, 10, -1, 9, -1, 14, -1, 13, -1,  //
                         2, -1, 1, -1, 6, -1, 5, -1, 10, -1, 9, -1, 14, -1, 13, -1);
    const __m256i blue =
        _mm256_setr_epi8(0, -1, -1, -1, 4, -1, -1, -1, 8, -1, -1, -1, 12, -1, -1,
                         -1,  //
                         0, -1, -1, -1, 4, -1, -1, -1, 8, -1, -1, -1, 12, -1, -1, -1);
    // Pixels 0-3 with 8-11, and 4-7 with 12-15.
    const __m256i low = LoadTwoHalves(p, p + 32);
    const __m256i high = LoadTwoHalves(p + 16, p + 48);
    return {_mm256_shuffle_epi8(low, redGreen), _mm256_shuffle_epi8(low, blue),
            _mm256_shuffle_epi8(high, redGreen), _mm256_shuffle_epi8(high, blue)};
}

template <PixelLayout kLayout>
inline PixelWords LoadPixels(const std::uint8_t* p, const Shuffles& s) {
    if constexpr (kLayout == PixelLayout::kRgb24) {
        return LoadRgb24(p, s);
    } else {
        return LoadBgrx32(p);
    }
}

struct Weights {
    __m256i lumaRedGreen;
    __m256i lumaBlue;
    __m256i blueRedGreen;
    __m256i blueBlue;
    __m256i redRedGreen;
    __m256i redBlue;
    __m256i lumaRounding;
    __m256i chromaRounding;
    __m256i lumaOffset;
};

inline Weights MakeWeights() {
    Weights w;
    w.lumaRedGreen = WeightPair(kLumaWeights.red, kLumaWeights.green);
    w.lumaBlue = WeightPair(kLumaWeights.blue, 0);
    w.blueRedGreen = WeightPair(kBlueDifferenceWeights.red, kBlueDifferenceWeights.green);
    w.blueBlue = WeightPair(kBlueDifferenceWeights.blue, 0);
    w.redRedGreen = WeightPair(kRedDifferenceWeights.red, kRedDifferenceWeights.green);
    w.redBlue = WeightPair(kRedDifferenceWeights.blue, 0);
    // One pixel: weighted sum * 8 / 2^15 rounded, i.e. (sum + 2^11) >> 12.
    w.lumaRounding = _mm256_set1_epi32(1 << (kWeightBits - kSampleFractionBits - 1));
    // Four pixels: weighted sum * 8 / (4 * 2^15) rounded, i.e. (sum + 2^13) >> 14.
    w.chromaRounding = _mm256_set1_epi32(1 << (kWeightBits - kSampleFractionBits + 1));
    w.lumaOffset = _mm256_set1_epi16(kLumaOffset);
    return w;
}

constexpr int kLumaShift = kWeightBits - kSampleFractionBits;
constexpr int kChromaShift = kWeightBits - kSampleFractionBits + 2;

// Y of 16 pixels as 16-bit samples, lane 0 pixels 0-7 and lane 1 pixels 8-15.
inline __m256i Luma(const PixelWords& px, const Weights& w) {
    __m256i low = _mm256_add_epi32(_mm256_madd_epi16(px.redGreenLow, w.lumaRedGreen),
                                   _mm256_madd_epi16(px.blueLow, w.lumaBlue));
    __m256i high = _mm256_add_epi32(_mm256_madd_epi16(px.redGreenHigh, w.lumaRedGreen),
                                    _mm256_madd_epi16(px.blueHigh, w.lumaBlue));
    low = _mm256_srai_epi32(_mm256_add_epi32(low, w.lumaRounding), kLumaShift);
    high = _mm256_srai_epi32(_mm256_add_epi32(high, w.lumaRounding), kLumaShift);
    return _mm256_sub_epi16(_mm256_packs_epi32(low, high), w.lumaOffset);
}

// One colour difference for the eight 2x2 areas of two rows of 16 pixels, as 32-bit values in
// area order.
inline __m256i Difference(const PixelWords& sum, __m256i redGreen, __m256i blue, const Weights& w) {
    const __m256i low = _mm256_add_epi32(_mm256_madd_epi16(sum.redGreenLow, redGreen),
                                         _mm256_madd_epi16(sum.blueLow, blue));
    const __m256i high = _mm256_add_epi32(_mm256_madd_epi16(sum.redGreenHigh, redGreen),
                                          _mm256_madd_epi16(sum.blueHigh, blue));
    const __m256i areas = _mm256_hadd_epi32(low, high);
    return _mm256_srai_epi32(_mm256_add_epi32(areas, w.chromaRounding), kChromaShift);
}

inline void Store8(std::int16_t* to, __m128i values) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), values);
}

// One MCU row of 4:2:0 blocks from its sixteen lines.
template <PixelLayout kLayout>
void Sample420(const std::uint8_t* const* lines, int mcusAcross, std::int16_t* blocks) {
    constexpr int kStep = 16 * BytesPerPixel(kLayout);  // bytes of one MCU's width
    const Shuffles shuffles = MakeShuffles();
    const Weights w = MakeWeights();
    for (int line = 0; line < 16; line += 2) {
        const std::uint8_t* upper = lines[line];
        const std::uint8_t* lower = lines[line + 1];
        const int blockRow = line / 8;
        const int rowInBlock = (line % 8) * 8;
        const int chromaRow = (line / 2) * 8;
        // The next pair of lines is read right after this one: ask for it early.
        const std::uint8_t* nextUpper = lines[std::min(line + 2, 14)];
        const std::uint8_t* nextLower = lines[std::min(line + 3, 15)];
        std::int16_t* mcu = blocks;
        for (int mx = 0; mx < mcusAcross; ++mx, mcu += 6 * 64) {
            _mm_prefetch(reinterpret_cast<const char*>(nextUpper + kStep * mx), _MM_HINT_T0);
            _mm_prefetch(reinterpret_cast<const char*>(nextLower + kStep * mx), _MM_HINT_T0);
            const PixelWords a = LoadPixels<kLayout>(upper + kStep * mx, shuffles);
            const PixelWords b = LoadPixels<kLayout>(lower + kStep * mx, shuffles);

            // Y blocks 0 and 1 are the MCU's top half, 2 and 3 its bottom half.
            const __m256i lumaUpper = Luma(a, w);
            const __m256i lumaLower = Luma(b, w);
            std::int16_t* left8 = mcu + (2 * blockRow) * 64 + rowInBlock;
            std::int16_t* right8 = left8 + 64;
            Store8(left8, _mm256_castsi256_si128(lumaUpper));
            Store8(right8, _mm256_extracti128_si256(lumaUpper, 1));
            Store8(left8 + 8, _mm256_castsi256_si128(lumaLower));
            Store8(right8 + 8, _mm256_extracti128_si256(lumaLower, 1));

            const PixelWords sum{_mm256_add_epi16(a.redGreenLow, b.redGreenLow),
                                 _mm256_add_epi16(a.blueLow, b.blueLow),
                                 _mm256_add_epi16(a.redGreenHigh, b.redGreenHigh),
                                 _mm256_add_epi16(a.blueHigh, b.blueHigh)};
            const __m256i cb = Difference(sum, w.blueRedGreen, w.blueBlue, w);
            const __m256i cr = Difference(sum, w.redRedGreen, w.redBlue, w);
            const __m256i both = _mm256_permute4x64_epi64(_mm256_packs_epi32(cb, cr), 0xD8);
            Store8(mcu + 4 * 64 + chromaRow, _mm256_castsi256_si128(both));
            Store8(mcu + 5 * 64 + chromaRow, _mm256_extracti128_si256(both, 1));
        }
    }
}

}  // namespace

void ColorSampler::SampleRow420Avx2(int mcuRow, std::int16_t* blocks) {
    FetchLines(mcuRow);
    if (source_.Layout() == PixelLayout::kRgb24) {
        Sample420<PixelLayout::kRgb24>(lines_.data(), layout_.McusAcross(), blocks);
    } else {
        Sample420<PixelLayout::kBgrx32>(lines_.data(), layout_.McusAcross(), blocks);
    }
}

}  // namespace tavren::jpeg

#pragma GCC pop_options

#else

namespace tavren::jpeg {
void ColorSampler::SampleRow420Avx2(int mcuRow, std::int16_t* blocks) {
    SampleRowPortable(mcuRow, blocks);
}
}  // namespace tavren::jpeg

#endif
