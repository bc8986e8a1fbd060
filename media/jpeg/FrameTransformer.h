#pragma once

#include <array>

#include "media/jpeg/BlockLayout.h"
#include "media/jpeg/PixelRows.h"
#include "media/jpeg/QuantizationTable.h"
#include "media/jpeg/QuantizedBlocks.h"

namespace tavren::jpeg {

// The encoder's first pass: colour conversion and sub-sampling (ColorSampler), the DCT
// (ForwardDct) and quantisation (Quantizer) of a whole picture, one MCU row at a time so that
// the samples and coefficients are still in cache when the next step takes them, with every
// block's symbols counted for the Huffman tables on the way. Pieces of a few MCU rows are
// shared out among threads when the source can be read in any order.
class FrameTransformer {
  public:
    // `source` is layout.Width() x layout.Height() pixels; the blocks are quantised with
    // `tables` ([0] luminance, [1] chrominance) and left in `blocks`.
    static void Transform(PixelRows& source, const BlockLayout& layout,
                          const std::array<QuantizationTable, 2>& tables, int threads,
                          QuantizedBlocks& blocks);
};

}  // namespace tavren::jpeg
