#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "media/PpmFormatError.h"

namespace tavren {

// The header of a binary PPM (P6) picture and how its samples are stored.
struct PpmHeader {
    int width = 0;
    int height = 0;
    unsigned maxValue = 255;
    std::size_t start = 0;  // where the samples begin

    // Parses the header at the start of `bytes`. Sizes must be 1..65535 and the maximum sample
    // value 1..65535; anything else raises PpmFormatError.
    static PpmHeader Parse(std::string_view bytes);

    std::size_t BytesPerSample() const { return maxValue < 256 ? 1 : 2; }
    std::size_t SampleCount() const { return static_cast<std::size_t>(width) * height * 3; }
    std::size_t LineBytes() const { return static_cast<std::size_t>(width) * 3 * BytesPerSample(); }
    // Whether a line as stored is already one byte R, G, B per pixel.
    bool Plain() const { return maxValue == 255; }

    // Turns `count` samples as stored into bytes 0..255 (scaled from the maximum value, values
    // above it taken as the maximum).
    void ToBytes(const std::uint8_t* in, std::size_t count, std::uint8_t* out) const;
};

}  // namespace tavren
