#pragma once

#include <array>
#include <string_view>
#include <vector>

#include "media/jpeg/AlignedBuffer.h"
#include "media/jpeg/EntropyCoding.h"
#include "media/jpeg/HuffmanTable.h"
#include "media/jpeg/OutputBuffer.h"
#include "media/jpeg/QuantizationTable.h"
#include "media/jpeg/TransformedImage.h"

namespace tavren::jpeg {

// Encodes transformed blocks into a complete baseline JFIF file. The first pass quantises every
// block once, keeps only what the scan needs (a mask of non-zero coefficients and their values)
// and counts the symbols; Huffman tables made for exactly those counts then drive the second
// pass, which writes the scan from what the first kept. Both passes share pieces of consecutive
// MCUs out among threads; the later pieces' parts of the scan are appended to the first's.
class FrameEncoder {
  public:
    struct Settings {
        std::array<const jpeg::QuantizationTable*, 2> quantization{};
        std::string_view comment;
        std::string_view identification;
        int threads = 1;
    };

    void Encode(const TransformedImage& image, const Settings& settings, OutputBuffer& out);

    // The tables of the last encoding: [0] luminance, [1] chrominance.
    const HuffmanTable& DcTable(int slot) const { return dcTables_[slot]; }
    const HuffmanTable& AcTable(int slot) const { return acTables_[slot]; }

  private:
    // What the first pass leaves for one piece of consecutive MCUs.
    struct Piece {
        long firstMcu = 0;
        long endMcu = 0;
        SymbolCounts counts;
        // DC values at the piece's two ends, for the differences across piece borders.
        std::array<int, TransformedImage::kMaxComponents> firstDc{};
        std::array<int, TransformedImage::kMaxComponents> lastDc{};
        AlignedBuffer<std::int16_t> values;  // per block: DC, then the non-zero AC values
        AlignedBuffer<std::uint8_t> scan;    // this piece's part of the scan, unstuffed
    };

    void QuantizeAndCount(const TransformedImage& image, const Settings& settings);
    void WriteScan(const TransformedImage& image, int tables, int threads, OutputBuffer& out);
    template <typename Writer>
    void WritePiece(const Piece& piece,
                    const std::array<int, TransformedImage::kMaxComponents>& previousDc,
                    const std::array<EncodingTable, 2>& dc, const std::array<EncodingTable, 2>& ac,
                    int blocksPerMcu, Writer& bits) const;

    std::array<HuffmanTable, 2> dcTables_;
    std::array<HuffmanTable, 2> acTables_;
    std::vector<Piece> pieces_;
    AlignedBuffer<std::uint64_t> nonzero_;  // per block
    std::vector<int> tableOfPosition_;      // per block position of an MCU
    std::vector<int> componentOfPosition_;
};

}  // namespace tavren::jpeg
