#pragma once

#include "media/cImage.h"
#include "media/jpeg/SampledImage.h"

namespace tavren::jpeg {

// Turns a rectangle of a picture into the encoder's sample blocks: every pixel to Y (and Cb,
// Cr), each component reduced to its sampling factors by averaging the pixel area one sample
// stands for, the picture extended to whole MCUs by repeating its last column and last row.
// Samples are fixed point (kSampleFractionBits) and centred on 0.
class ColorSampler {
  public:
    // `image` must already be Prepared for the rectangle's size; the rectangle
    // (left, top, image.Width(), image.Height()) must lie inside `source`.
    static void Sample(const tavren::cImage& source, int left, int top, SampledImage& image,
                       int threads);

    // The portable route for any sampling factors, for MCU rows [firstRow, endRow).
    static void SampleRowsPortable(const tavren::cImage& source, int left, int top,
                                   SampledImage& image, int firstRow, int endRow);
    // The vector route for 4:2:0 (Y 2x2, Cb and Cr 1x1); same results as the portable one.
    // Callable only when the CPU has AVX2.
    static void SampleRows420Avx2(const tavren::cImage& source, int left, int top,
                                  SampledImage& image, int firstRow, int endRow);

    static bool Is420(const SampledImage& image);
};

}  // namespace tavren::jpeg
