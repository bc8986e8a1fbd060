#pragma once

#include <array>
#include <string_view>

#include "media/jpeg/AlignedBuffer.h"
#include "media/jpeg/HuffmanTable.h"
#include "media/jpeg/OutputBuffer.h"
#include "media/jpeg/QuantizationTable.h"
#include "media/jpeg/SampledImage.h"

namespace tavren::jpeg {

// Encodes sampled blocks into a complete baseline JFIF file. The first pass transforms and
// quantises every block once, keeps the coefficients and counts the symbols they will need;
// Huffman tables made for exactly those counts then drive the second pass, which writes the
// scan from the kept coefficients. The first pass runs on several threads by stripes of MCUs.
class FrameEncoder {
  public:
    struct Settings {
        std::array<const jpeg::QuantizationTable*, 2> quantization{};
        std::string_view comment;
        std::string_view identification;
        int threads = 1;
    };

    void Encode(const SampledImage& image, const Settings& settings, OutputBuffer& out);

    // The tables of the last encoding: [0] luminance, [1] chrominance.
    const HuffmanTable& DcTable(int slot) const { return dcTables_[slot]; }
    const HuffmanTable& AcTable(int slot) const { return acTables_[slot]; }

  private:
    std::array<HuffmanTable, 2> dcTables_;
    std::array<HuffmanTable, 2> acTables_;
    AlignedBuffer<std::int16_t> coefficients_;
    AlignedBuffer<std::uint64_t> nonzero_;
};

}  // namespace tavren::jpeg
