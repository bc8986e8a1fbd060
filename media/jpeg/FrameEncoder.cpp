#include "media/jpeg/FrameEncoder.h"

#include <algorithm>

#include "media/jpeg/JpegSegmentWriter.h"
#include "media/jpeg/Quantizer.h"
#include "media/jpeg/SplitWork.h"

namespace tavren::jpeg {
namespace {

// Below this many blocks a second thread costs more than it saves.
constexpr long kBlocksWorthASecondThread = 2048;

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
    const int threads = static_cast<long>(image.BlockCount()) < kBlocksWorthASecondThread
                            ? 1
                            : std::max(1, settings.threads);
    stripes_.resize(static_cast<std::size_t>(std::clamp<long>(threads, 1, mcuCount)));
    const Quantizer::Kernel quantize = Quantizer::Best();

    SplitWork(mcuCount, threads, [&](int part, long firstMcu, long endMcu) {
        Stripe& stripe = stripes_[part];
        stripe.firstMcu = firstMcu;
        stripe.endMcu = endMcu;
        stripe.counts = SymbolCounts{};
        // Room for every coefficient; only what is used gets touched.
        stripe.values.Resize(static_cast<std::size_t>(endMcu - firstMcu) * blocksPerMcu * 64);
        std::int16_t* values = stripe.values.Data();
        std::array<int, TransformedImage::kMaxComponents> previous{};
        std::array<bool, TransformedImage::kMaxComponents> seen{};
        if (firstMcu == 0) {
            seen.fill(true);  // the first block's DC is coded against 0
        }
        std::size_t block = static_cast<std::size_t>(firstMcu) * blocksPerMcu;
        for (long mcu = firstMcu; mcu < endMcu; ++mcu) {
            for (int p = 0; p < blocksPerMcu; ++p, ++block) {
                const int table = tableOfPosition_[p];
                const int component = componentOfPosition_[p];
                const std::uint64_t nonzero =
                    quantize(image.Block(block), multipliers[table].data(), values);
                nonzero_[block] = nonzero;
                const int dc = values[0];
                if (seen[component]) {
                    ++stripe.counts.dc[table][SizeCategory(dc - previous[component])];
                } else {
                    seen[component] = true;
                    stripe.firstDc[component] = dc;
                }
                previous[component] = dc;
                values = const_cast<std::int16_t*>(
                    CountAc(values + 1, nonzero, stripe.counts.ac[table]));
            }
        }
        stripe.lastDc = previous;
    });
}

void FrameEncoder::WriteScan(const TransformedImage& image, int tables, OutputBuffer& out) {
    const int blocksPerMcu = image.BlocksPerMcu();
    const std::array<EncodingTable, 2> dc{EncodingTable(dcTables_[0]),
                                          EncodingTable(dcTables_[tables - 1])};
    const std::array<EncodingTable, 2> ac{EncodingTable(acTables_[0]),
                                          EncodingTable(acTables_[tables - 1])};
    std::array<int, TransformedImage::kMaxComponents> previous{};
    BitWriter bits(out.Cursor());
    for (const Stripe& stripe : stripes_) {
        const std::int16_t* values = stripe.values.Data();
        std::size_t block = static_cast<std::size_t>(stripe.firstMcu) * blocksPerMcu;
        for (long mcu = stripe.firstMcu; mcu < stripe.endMcu; ++mcu) {
            for (int p = 0; p < blocksPerMcu; ++p, ++block) {
                const int table = tableOfPosition_[p];
                const int component = componentOfPosition_[p];
                WriteDc(bits, dc[table], values[0] - previous[component]);
                previous[component] = values[0];
                values = WriteAc(bits, ac[table], values + 1, nonzero_[block]);
            }
        }
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
    SymbolCounts counts = stripes_[0].counts;
    for (std::size_t s = 1; s < stripes_.size(); ++s) {
        counts.Add(stripes_[s].counts);
        for (int c = 0; c < image.ComponentCount(); ++c) {
            const int table = image.Component(c).table;
            ++counts.dc[table][SizeCategory(stripes_[s].firstDc[c] - stripes_[s - 1].lastDc[c])];
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
    WriteScan(image, tables, out);
    segments.EndOfImage();
}

}  // namespace tavren::jpeg
