#pragma once

#include <cstdint>

#include "media/jpeg/JpegConstants.h"

namespace tavren::jpeg {

// The conversion from R, G, B to Y, Cb, Cr in fixed point with 15 fractional bits:
//   Y  =  0.299   R + 0.587   G + 0.114   B
//   Cb = -0.16874 R - 0.33126 G + 0.5     B
//   Cr =  0.5     R - 0.41869 G - 0.08131 B
// Each row sums to exactly 1 (Y) or 0 (Cb, Cr), so grey stays grey and white stays 255.
struct ColorWeights {
    int red;
    int green;
    int blue;
};
inline constexpr ColorWeights kLumaWeights{9798, 19235, 3735};
inline constexpr ColorWeights kBlueDifferenceWeights{-5529, -10855, 16384};
inline constexpr ColorWeights kRedDifferenceWeights{16384, -13720, -2664};
inline constexpr int kWeightBits = 15;

// One sample from the R, G, B sums over an area of `pixels` pixels: the weighted mean in
// kSampleOne steps, rounded half up (floor division so that negative values round the same way
// as an arithmetic shift does), and moved by `offset` steps.
inline int SampleFromSums(const ColorWeights& w, std::int64_t red, std::int64_t green,
                          std::int64_t blue, int pixels, int offset) {
    const std::int64_t weighted = w.red * red + w.green * green + w.blue * blue;
    const std::int64_t numerator =
        weighted * kSampleOne + (static_cast<std::int64_t>(pixels) << (kWeightBits - 1));
    const std::int64_t denominator = static_cast<std::int64_t>(pixels) << kWeightBits;
    std::int64_t quotient = numerator / denominator;
    if ((numerator % denominator != 0) && (numerator < 0)) {
        --quotient;
    }
    return static_cast<int>(quotient) - offset;
}

// Luminance is level-shifted by 128 so that it centres on 0 like the colour differences.
inline constexpr int kLumaOffset = 128 * kSampleOne;

}  // namespace tavren::jpeg
