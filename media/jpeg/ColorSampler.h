#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "media/cImage.h"
#include "media/jpeg/TransformedImage.h"

namespace tavren::jpeg {

// Turns a rectangle of a picture into sample blocks, one MCU row at a time: every pixel to Y
// (and Cb, Cr), each component reduced to its sampling factors by averaging the pixel area one
// sample stands for, the picture extended to whole MCUs by repeating its last column and last
// row. Samples are fixed point (kSampleFractionBits) and centred on 0. One sampler per thread.
class ColorSampler {
  public:
    // The rectangle (left, top, layout.Width(), layout.Height()) must lie inside `source`.
    ColorSampler(const tavren::cImage& source, int left, int top, const TransformedImage& layout);

    // Writes the samples of one MCU row to `blocks`: McusAcross() x BlocksPerMcu() blocks of 64
    // samples, in the layout's block order. Picks the fastest route this CPU has.
    void SampleRow(int mcuRow, std::int16_t* blocks);

    // The portable route for any sampling factors.
    void SampleRowPortable(int mcuRow, std::int16_t* blocks);
    // The vector route for 4:2:0 (Y 2x2, Cb and Cr 1x1): the same samples as the portable one.
    // Callable only when the CPU has AVX2.
    void SampleRow420Avx2(int mcuRow, std::int16_t* blocks);

    static bool Is420(const TransformedImage& layout);

  private:
    std::int16_t* BlockOf(std::int16_t* blocks, int mcuInRow, int component, int row,
                          int column) const {
        return blocks + (static_cast<std::size_t>(mcuInRow) * layout_.BlocksPerMcu() +
                         layout_.FirstBlockOf(component) +
                         row * layout_.Component(component).horizontal + column) *
                            64;
    }
    // A line of the rectangle (repeating the last one past the bottom) as it is in the source,
    // and extended to whole MCUs (in a copy if needed; `slot` 0 or 1 picks the copy).
    const std::uint8_t* SourceRow(int line) const {
        return source_.ScanLine(top_ + std::min(line, layout_.Height() - 1)) + 3 * left_;
    }
    const std::uint8_t* ExtendedRow(int line, int slot);

    const tavren::cImage& source_;
    int left_;
    int top_;
    const TransformedImage& layout_;
    bool vector420_;
    std::vector<std::size_t> columnOffset_;  // byte offset of every padded column in a row
    std::vector<std::uint8_t> extended_;     // rows copied out and extended to whole MCUs
};

}  // namespace tavren::jpeg
