#pragma once

#include "media/cImage.h"
#include "media/jpeg/TransformedImage.h"

namespace tavren::jpeg {

// Fills a TransformedImage from a rectangle of a picture: colour conversion and sub-sampling
// (ColorSampler) and the DCT (ForwardDct), one MCU row at a time so that the samples are still
// in cache when they are transformed. Pieces of a few MCU rows are shared out among threads.
class FrameTransformer {
  public:
    // `image` must be Prepared for the rectangle's size; the rectangle (left, top,
    // image.Width(), image.Height()) must lie inside `source`.
    static void Transform(const tavren::cImage& source, int left, int top, TransformedImage& image,
                          int threads);
};

}  // namespace tavren::jpeg
