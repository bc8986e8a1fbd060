#pragma once

#include <cstdint>
#include <vector>

#include "media/jpeg/BlockLayout.h"
#include "media/jpeg/PixelRows.h"

namespace tavren::jpeg {

// Turns pixels into sample blocks, one MCU row at a time: every pixel to Y (and Cb, Cr), each
// component reduced to its sampling factors by averaging the pixel area one sample stands for,
// the picture extended to whole MCUs by repeating its last column and last row. Samples are
// fixed point (kSampleFractionBits) and centred on 0. One sampler per thread.
class ColorSampler {
  public:
    // `source` is the picture, layout.Width() x layout.Height() pixels.
    ColorSampler(PixelRows& source, const BlockLayout& layout);

    // Writes the samples of one MCU row to `blocks`: layout.BlocksPerMcuRow() blocks of 64
    // samples, in the layout's block order. Picks the fastest route this CPU has.
    void SampleRow(int mcuRow, std::int16_t* blocks);

    // The portable route for any sampling factors.
    void SampleRowPortable(int mcuRow, std::int16_t* blocks);
    // The vector route for 4:2:0 (Y 2x2, Cb and Cr 1x1): the same samples as the portable one.
    // Callable only when the CPU has AVX2.
    void SampleRow420Avx2(int mcuRow, std::int16_t* blocks);

    static bool Is420(const BlockLayout& layout);

  private:
    std::int16_t* BlockOf(std::int16_t* blocks, int mcuInRow, int component, int row,
                          int column) const {
        return blocks + (static_cast<std::size_t>(mcuInRow) * layout_.BlocksPerMcu() +
                         layout_.FirstBlockOf(component) +
                         row * layout_.Component(component).horizontal + column) *
                            64;
    }
    // Points lines_ at the MCU row's lines (the last line repeating past the bottom), each
    // extended to whole MCUs by repeating its last pixel (in a copy when it has to be).
    void FetchLines(int mcuRow);

    PixelRows& source_;
    const BlockLayout& layout_;
    const bool vector420_;
    const int bytesPerPixel_;
    std::vector<const std::uint8_t*> lines_;  // the current MCU row's lines
    std::vector<std::uint8_t> extended_;      // lines copied out and extended to whole MCUs
};

}  // namespace tavren::jpeg
