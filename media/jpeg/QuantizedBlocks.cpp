#include "media/jpeg/QuantizedBlocks.h"

namespace tavren::jpeg {

void QuantizedBlocks::Prepare(const BlockLayout& layout, long pieceCount,
                              const std::array<QuantizationTable, 2>& tables) {
    tables_ = tables;
    const long rows = layout.McusDown();
    pieceCount = std::clamp<long>(pieceCount, 1, rows);
    pieces_.resize(static_cast<std::size_t>(pieceCount));
    for (long i = 0; i < pieceCount; ++i) {
        Piece& piece = pieces_[static_cast<std::size_t>(i)];
        piece.firstRow = rows * i / pieceCount;
        piece.endRow = rows * (i + 1) / pieceCount;
        // Room for every coefficient; only the pages the values reach are ever touched.
        piece.values.Resize(static_cast<std::size_t>(piece.endRow - piece.firstRow) *
                            layout.BlocksPerMcuRow() * 64);
    }
    nonzero_.Resize(layout.BlockCount());
}

SymbolCounts QuantizedBlocks::TotalCounts(const BlockLayout& layout) const {
    SymbolCounts counts = pieces_[0].counts;
    for (std::size_t i = 1; i < pieces_.size(); ++i) {
        counts.Add(pieces_[i].counts);
        for (int c = 0; c < layout.ComponentCount(); ++c) {
            const int table = layout.Component(c).table;
            ++counts.dc[table][SizeCategory(pieces_[i].firstDc[c] - pieces_[i - 1].lastDc[c])];
        }
    }
    return counts;
}

}  // namespace tavren::jpeg
