#pragma once

#include <array>
#include <string_view>
#include <vector>

#include "media/jpeg/AlignedBuffer.h"
#include "media/jpeg/BlockLayout.h"
#include "media/jpeg/EntropyCoding.h"
#include "media/jpeg/HuffmanTable.h"
#include "media/jpeg/OutputBuffer.h"
#include "media/jpeg/QuantizedBlocks.h"

namespace tavren::jpeg {

// The encoder's second pass: Huffman tables made for exactly the symbols the first pass
// (FrameTransformer) counted, the file's segments, and the scan written from the quantised
// blocks. The pieces of the picture are written by several threads at once; the later pieces'
// parts of the scan are appended to the first's.
class FrameEncoder {
  public:
    struct Settings {
        std::string_view comment;
        std::string_view identification;
        int threads = 1;
    };

    void Encode(const BlockLayout& layout, const QuantizedBlocks& blocks, const Settings& settings,
                OutputBuffer& out);

    // The tables of the last encoding: [0] luminance, [1] chrominance.
    const HuffmanTable& DcTable(int slot) const { return dcTables_[slot]; }
    const HuffmanTable& AcTable(int slot) const { return acTables_[slot]; }

  private:
    void WriteScan(const BlockLayout& layout, const QuantizedBlocks& blocks, int tables,
                   int threads, OutputBuffer& out);
    template <typename Writer>
    void WritePiece(const BlockLayout& layout, const QuantizedBlocks& blocks,
                    const QuantizedBlocks::Piece& piece,
                    const QuantizedBlocks::DcValues& previousDc,
                    const std::array<EncodingTable, 2>& dc, const std::array<EncodingTable, 2>& ac,
                    Writer& bits) const;

    std::array<HuffmanTable, 2> dcTables_;
    std::array<HuffmanTable, 2> acTables_;
    std::vector<AlignedBuffer<std::uint8_t>> scans_;  // per later piece: its part, unstuffed
    std::vector<int> tableOfPosition_;                // per block position of an MCU
    std::vector<int> componentOfPosition_;
};

}  // namespace tavren::jpeg
