#include "media/jpeg/FrameEncoder.h"

#include <algorithm>

#include "media/jpeg/JpegSegmentWriter.h"
#include "media/jpeg/ParallelFor.h"
#include "media/jpeg/Quantizer.h"

namespace tavren::jpeg {
namespace {

// A piece of work worth handing to another thread: about this many blocks.
constexpr long kBlocksPerPiece = 2048;

using DcValues = std::array<int, TransformedImage::kMaxComponents>;

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

void FrameEncoder::QuantizeAndCount(const TransformedImage& image, const Settings& settings) {
    const int blocksPerMcu = image.BlocksPerMcu();
    std::array<std::array<float, 64>, 2> multipliers{};
    for (int t = 0; t < 2; ++t) {
        multipliers[t] = settings.quantization[t]->QuantizerMultipliers();
    }
    const long mcuCount = static_cast<long>(image.McuCount());
    const long pieceCount = std::min(mcuCount, PieceCount(static_cast<long>(image.BlockCount()),
                                                          settings.threads, kBlocksPerPiece));
    pieces_.resize(static_cast<std::size_t>(pieceCount));
    const Quantizer::Kernel quantize = Quantizer::Best();

    ParallelFor(pieceCount, settings.threads, [&](int, long index) {
        Piece& piece = pieces_[index];
        piece.firstMcu = mcuCount * index / pieceCount;
        piece.endMcu = mcuCount * (index + 1) / pieceCount;
        piece.counts = SymbolCounts{};
        // Room for every coefficient; only what is used gets touched.
        piece.values.Resize(static_cast<std::size_t>(piece.endMcu - piece.firstMcu) * blocksPerMcu *
                            64);
        std::int16_t* values = piece.values.Data();
        DcValues previous{};
        std::array<bool, TransformedImage::kMaxComponents> seen{};
        if (index == 0) {
            seen.fill(true);  // the first block's DC is coded against 0
        }
        std::size_t block = static_cast<std::size_t>(piece.firstMcu) * blocksPerMcu;
        for (long mcu = piece.firstMcu; mcu < piece.endMcu; ++mcu) {
            for (int p = 0; p < blocksPerMcu; ++p, ++block) {
                const int table = tableOfPosition_[p];
                const int component = componentOfPosition_[p];
                const std::uint64_t nonzero =
                    quantize(image.Block(block), multipliers[table].data(), values);
                nonzero_[block] = nonzero;
                const int dc = values[0];
                if (seen[component]) {
                    ++piece.counts.dc[table][SizeCategory(dc - previous[component])];
                } else {
                    seen[component] = true;
                    piece.firstDc[component] = dc;
                }
                previous[component] = dc;
                values =
                    const_cast<std::int16_t*>(CountAc(values + 1, nonzero, piece.counts.ac[table]));
            }
        }
        piece.lastDc = previous;
    });
}

template <typename Writer>
void FrameEncoder::WritePiece(const Piece& piece, const DcValues& previousDc,
                              const std::array<EncodingTable, 2>& dc,
                              const std::array<EncodingTable, 2>& ac, int blocksPerMcu,
                              Writer& bits) const {
    DcValues previous = previousDc;
    const std::int16_t* values = piece.values.Data();
    std::size_t block = static_cast<std::size_t>(piece.firstMcu) * blocksPerMcu;
    for (long mcu = piece.firstMcu; mcu < piece.endMcu; ++mcu) {
        for (int p = 0; p < blocksPerMcu; ++p, ++block) {
            const int table = tableOfPosition_[p];
            const int component = componentOfPosition_[p];
            WriteDc(bits, dc[table], values[0] - previous[component]);
            previous[component] = values[0];
            values = WriteAc(bits, ac[table], values + 1, nonzero_[block]);
        }
    }
}

void FrameEncoder::WriteScan(const TransformedImage& image, int tables, int threads,
                             OutputBuffer& out) {
    const int blocksPerMcu = image.BlocksPerMcu();
    const std::array<EncodingTable, 2> dc{EncodingTable(dcTables_[0]),
                                          EncodingTable(dcTables_[tables - 1])};
    const std::array<EncodingTable, 2> ac{EncodingTable(acTables_[0]),
                                          EncodingTable(acTables_[tables - 1])};
    // The first piece goes straight into the file; each later one into its own buffer,
    // unstuffed, since where its bytes fall depends on how many bits come before it.
    BitWriter bits(out.Cursor());
    std::vector<UnstuffedBitWriter> parts;
    parts.reserve(pieces_.size());
    for (std::size_t i = 0; i < pieces_.size(); ++i) {
        Piece& piece = pieces_[i];
        if (i > 0) {
            // A block takes at most 27 + 63 * 26 bits.
            piece.scan.Resize(
                static_cast<std::size_t>(piece.endMcu - piece.firstMcu) * blocksPerMcu * 216 + 16);
        }
        parts.emplace_back(piece.scan.Data());
    }
    ParallelFor(static_cast<long>(pieces_.size()), threads, [&](int, long i) {
        if (i == 0) {
            WritePiece(pieces_[0], DcValues{}, dc, ac, blocksPerMcu, bits);
        } else {
            WritePiece(pieces_[i], pieces_[i - 1].lastDc, dc, ac, blocksPerMcu, parts[i]);
        }
    });
    for (std::size_t i = 1; i < pieces_.size(); ++i) {
        bits.Append(parts[i], pieces_[i].scan.Data());
    }
    out.Advance(static_cast<std::size_t>(bits.Finish() - out.Cursor()));
}

void FrameEncoder::Encode(const TransformedImage& image, const Settings& settings,
                          OutputBuffer& out) {
    const int blocksPerMcu = image.BlocksPerMcu();
    tableOfPosition_.resize(blocksPerMcu);
    componentOfPosition_.resize(blocksPerMcu);
    for (int p = 0; p < blocksPerMcu; ++p) {
        componentOfPosition_[p] = image.ComponentOfMcuBlock(p);
        tableOfPosition_[p] = image.Component(componentOfPosition_[p]).table;
    }
    nonzero_.Resize(image.BlockCount());

    QuantizeAndCount(image, settings);
    SymbolCounts counts = pieces_[0].counts;
    for (std::size_t i = 1; i < pieces_.size(); ++i) {
        counts.Add(pieces_[i].counts);
        for (int c = 0; c < image.ComponentCount(); ++c) {
            const int table = image.Component(c).table;
            ++counts.dc[table][SizeCategory(pieces_[i].firstDc[c] - pieces_[i - 1].lastDc[c])];
        }
    }

    const int tables = image.ComponentCount() == 1 ? 1 : 2;
    for (int t = 0; t < tables; ++t) {
        dcTables_[t] = HuffmanTable::Optimal(counts.dc[t]);
        acTables_[t] = HuffmanTable::Optimal(counts.ac[t]);
    }

    // One buffer for the whole file: the customary estimate from the sample count, or more when
    // the counted scan length (plus a stuffed byte for every byte at worst) needs it.
    const std::uint64_t scanBytes = ScanBits(counts, dcTables_, acTables_, tables) / 8 + 1;
    const std::size_t headerBytes = 2048 + settings.comment.size() + settings.identification.size();
    const auto estimate =
        static_cast<std::size_t>(1.3 * static_cast<double>(image.BlockCount() * 64)) + 1000 +
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
        segments.QuantizationTable(t, *settings.quantization[t]);
    }
    segments.FrameHeader(image);
    for (int t = 0; t < tables; ++t) {
        segments.HuffmanTable(JpegSegmentWriter::TableClass::kDc, t, dcTables_[t]);
        segments.HuffmanTable(JpegSegmentWriter::TableClass::kAc, t, acTables_[t]);
    }
    segments.ScanHeader(image);
    WriteScan(image, tables, settings.threads, out);
    segments.EndOfImage();
}

}  // namespace tavren::jpeg
