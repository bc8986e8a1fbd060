#include "media/jpeg/FrameEncoder.h"

#include <algorithm>

#include "media/jpeg/JpegSegmentWriter.h"
#include "media/jpeg/ParallelFor.h"

namespace tavren::jpeg {
namespace {

using DcValues = QuantizedBlocks::DcValues;

// Bits the scan will take with the given tables: each symbol's code plus its value bits.
std::uint64_t ScanBits(const SymbolCounts& counts, const std::array<HuffmanTable, 2>& dc,
                       const std::array<HuffmanTable, 2>& ac, int tables) {
    std::uint64_t bits = 0;
    for (int t = 0; t < tables; ++t) {
        for (int s = 0; s < 256; ++s) {
            bits += counts.dc[t][s] * (dc[t].Length(s) + s);
            bits += counts.ac[t][s] * (ac[t].Length(s) + (s & 15));
        }
    }
    return bits;
}

}  // namespace

template <typename Writer>
void FrameEncoder::WritePiece(const BlockLayout& layout, const QuantizedBlocks& blocks,
                              const QuantizedBlocks::Piece& piece, const DcValues& previousDc,
                              const std::array<EncodingTable, 2>& dc,
                              const std::array<EncodingTable, 2>& ac, Writer& bits) const {
    const int blocksPerMcu = layout.BlocksPerMcu();
    const long mcusAcross = layout.McusAcross();
    DcValues previous = previousDc;
    const std::int16_t* values = piece.values.Data();
    const std::uint64_t* nonzero =
        blocks.NonzeroMasks() + static_cast<std::size_t>(piece.firstRow) * layout.BlocksPerMcuRow();
    for (long mcu = piece.firstRow * mcusAcross; mcu < piece.endRow * mcusAcross; ++mcu) {
        for (int p = 0; p < blocksPerMcu; ++p, ++nonzero) {
            const int table = tableOfPosition_[p];
            const int component = componentOfPosition_[p];
            WriteDc(bits, dc[table], values[0] - previous[component]);
            previous[component] = values[0];
            values = WriteAc(bits, ac[table], values + 1, *nonzero);
        }
    }
}

void FrameEncoder::WriteScan(const BlockLayout& layout, const QuantizedBlocks& blocks, int tables,
                             int threads, OutputBuffer& out) {
    const std::vector<QuantizedBlocks::Piece>& pieces = blocks.Pieces();
    const std::array<EncodingTable, 2> dc{EncodingTable(dcTables_[0]),
                                          EncodingTable(dcTables_[tables - 1])};
    const std::array<EncodingTable, 2> ac{EncodingTable(acTables_[0]),
                                          EncodingTable(acTables_[tables - 1])};
    // The first piece goes straight into the file; each later one into its own buffer,
    // unstuffed, since where its bytes fall depends on how many bits come before it.
    BitWriter bits(out.Cursor());
    std::vector<UnstuffedBitWriter> parts;
    parts.reserve(pieces.size());
    scans_.resize(pieces.size());
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (i > 0) {
            // A block takes at most 27 + 63 * 26 bits.
            scans_[i].Resize(static_cast<std::size_t>(pieces[i].endRow - pieces[i].firstRow) *
                                 layout.BlocksPerMcuRow() * 216 +
                             16);
        }
        parts.emplace_back(scans_[i].Data());
    }
    ParallelFor(static_cast<long>(pieces.size()), threads, [&](int, long i) {
        if (i == 0) {
            WritePiece(layout, blocks, pieces[0], DcValues{}, dc, ac, bits);
        } else {
            WritePiece(layout, blocks, pieces[i], pieces[i - 1].lastDc, dc, ac, parts[i]);
        }
    });
    for (std::size_t i = 1; i < pieces.size(); ++i) {
        bits.Append(parts[i], scans_[i].Data());
    }
    out.Advance(static_cast<std::size_t>(bits.Finish() - out.Cursor()));
}

void FrameEncoder::Encode(const BlockLayout& layout, const QuantizedBlocks& blocks,
                          const Settings& settings, OutputBuffer& out) {
    const int blocksPerMcu = layout.BlocksPerMcu();
    tableOfPosition_.resize(blocksPerMcu);
    componentOfPosition_.resize(blocksPerMcu);
    for (int p = 0; p < blocksPerMcu; ++p) {
        componentOfPosition_[p] = layout.ComponentOfMcuBlock(p);
        tableOfPosition_[p] = layout.Component(componentOfPosition_[p]).table;
    }

    const SymbolCounts counts = blocks.TotalCounts(layout);
    const int tables = layout.ComponentCount() == 1 ? 1 : 2;
    for (int t = 0; t < tables; ++t) {
        dcTables_[t] = HuffmanTable::Optimal(counts.dc[t]);
        acTables_[t] = HuffmanTable::Optimal(counts.ac[t]);
    }

    // One buffer for the whole file: the customary estimate from the sample count, or more when
    // the counted scan length (plus a stuffed byte for every byte at worst) needs it. Only the
    // pages the file reaches are ever touched.
    const std::uint64_t scanBytes = ScanBits(counts, dcTables_, acTables_, tables) / 8 + 1;
    const std::size_t headerBytes = 2048 + settings.comment.size() + settings.identification.size();
    const auto estimate =
        static_cast<std::size_t>(1.3 * static_cast<double>(layout.BlockCount() * 64)) + 1000 +
        settings.comment.size();
    out.Reset(std::max<std::size_t>(estimate, headerBytes + 2 * scanBytes + 64));

    JpegSegmentWriter segments(out);
    segments.StartOfImage();
    segments.JfifHeader();
    if (!settings.comment.empty()) {
        segments.Comment(settings.comment);
    }
    segments.Comment(settings.identification);
    for (int t = 0; t < tables; ++t) {
        segments.QuantizationTable(t, blocks.Tables()[t]);
    }
    segments.FrameHeader(layout);
    for (int t = 0; t < tables; ++t) {
        segments.HuffmanTable(JpegSegmentWriter::TableClass::kDc, t, dcTables_[t]);
        segments.HuffmanTable(JpegSegmentWriter::TableClass::kAc, t, acTables_[t]);
    }
    segments.ScanHeader(layout);
    WriteScan(layout, blocks, tables, settings.threads, out);
    segments.EndOfImage();
}

}  // namespace tavren::jpeg
