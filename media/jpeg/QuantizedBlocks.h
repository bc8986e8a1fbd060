#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "media/jpeg/AlignedBuffer.h"
#include "media/jpeg/BlockLayout.h"
#include "media/jpeg/EntropyCoding.h"
#include "media/jpeg/QuantizationTable.h"

namespace tavren::jpeg {

// The sampled picture after the DCT and quantisation, kept the way the scan needs it: per block
// a mask of its non-zero coefficients, and per piece of consecutive MCU rows the DC and
// non-zero AC values of its blocks packed one after another, with the symbols the piece will
// code already counted. A screen's blocks are mostly zeros, so this is a fraction of the
// coefficients themselves; the passes over the blocks never look at a zero.
class QuantizedBlocks {
  public:
    using DcValues = std::array<int, BlockLayout::kMaxComponents>;

    struct Piece {
        long firstRow = 0;  // MCU rows [firstRow, endRow)
        long endRow = 0;
        SymbolCounts counts;  // the DC differences across the piece's first blocks left out
        DcValues firstDc{};   // DC values of each component's first and last block
        DcValues lastDc{};
        AlignedBuffer<std::int16_t> values;  // per block: DC, then the non-zero AC values
    };

    // Cuts a picture of `layout` into `pieceCount` pieces of whole MCU rows and makes room for
    // them; the tables are the ones the blocks are quantised with.
    void Prepare(const BlockLayout& layout, long pieceCount,
                 const std::array<QuantizationTable, 2>& tables);
    void Clear() { pieces_.clear(); }
    bool Empty() const { return pieces_.empty(); }

    const std::array<QuantizationTable, 2>& Tables() const { return tables_; }
    std::vector<Piece>& Pieces() { return pieces_; }
    const std::vector<Piece>& Pieces() const { return pieces_; }
    std::uint64_t* NonzeroMasks() { return nonzero_.Data(); }
    const std::uint64_t* NonzeroMasks() const { return nonzero_.Data(); }

    // The counts of the whole picture: every piece's, and the DC differences across their
    // borders.
    SymbolCounts TotalCounts(const BlockLayout& layout) const;

  private:
    std::array<QuantizationTable, 2> tables_;
    std::vector<Piece> pieces_;
    AlignedBuffer<std::uint64_t> nonzero_;  // per block
};

}  // namespace tavren::jpeg
