#include "media/jpeg/FrameEncoder.h"

#include <vector>

#include "media/jpeg/EntropyCoding.h"
#include "media/jpeg/ForwardDct.h"
#include "media/jpeg/JpegSegmentWriter.h"
#include "media/jpeg/SplitWork.h"

namespace tavren::jpeg {
namespace {

// Below this many blocks a second thread costs more than it saves.
constexpr long kBlocksWorthASecondThread = 2048;

// What one stripe of the first pass leaves behind: its symbol counts, and the DC values at its
// two ends so that the differences across stripe borders can be counted afterwards.
struct StripeResult {
    SymbolCounts counts;
    std::array<int, SampledImage::kMaxComponents> firstDc{};
    std::array<int, SampledImage::kMaxComponents> lastDc{};
};

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

void FrameEncoder::Encode(const SampledImage& image, const Settings& settings, OutputBuffer& out) {
    const int blocksPerMcu = image.BlocksPerMcu();
    const std::size_t blockCount = image.BlockCount();
    coefficients_.Resize(blockCount * 64);
    nonzero_.Resize(blockCount);

    std::array<std::array<float, 64>, 2> multipliers{};
    for (int t = 0; t < 2; ++t) {
        multipliers[t] = settings.quantization[t]->TransformMultipliers();
    }
    std::vector<int> tableOfPosition(blocksPerMcu);
    std::vector<int> componentOfPosition(blocksPerMcu);
    for (int p = 0; p < blocksPerMcu; ++p) {
        componentOfPosition[p] = image.ComponentOfMcuBlock(p);
        tableOfPosition[p] = image.Component(componentOfPosition[p]).table;
    }

    // First pass: transform, quantise, count.
    const int threads =
        static_cast<long>(blockCount) < kBlocksWorthASecondThread ? 1 : settings.threads;
    const long mcuCount = static_cast<long>(image.McuCount());
    const ForwardDct::Kernel transform = ForwardDct::Best();
    std::vector<StripeResult> stripes(std::max(1, threads));
    SplitWork(mcuCount, threads, [&](int part, long firstMcu, long endMcu) {
        StripeResult& result = stripes[part];
        std::array<int, SampledImage::kMaxComponents> previous{};
        std::array<bool, SampledImage::kMaxComponents> seen{};
        if (firstMcu == 0) {
            seen.fill(true);  // the first block's DC is coded against 0
        }
        for (long mcu = firstMcu; mcu < endMcu; ++mcu) {
            for (int p = 0; p < blocksPerMcu; ++p) {
                const std::size_t block = static_cast<std::size_t>(mcu) * blocksPerMcu + p;
                const int table = tableOfPosition[p];
                const int component = componentOfPosition[p];
                std::int16_t* zigzag = coefficients_.Data() + block * 64;
                const std::uint64_t nonzero =
                    transform(image.Block(block), multipliers[table].data(), zigzag);
                nonzero_[block] = nonzero;
                const int dc = zigzag[0];
                if (seen[component]) {
                    ++result.counts.dc[table][SizeCategory(dc - previous[component])];
                } else {
                    seen[component] = true;
                    result.firstDc[component] = dc;
                }
                previous[component] = dc;
                CountAc(zigzag, nonzero, result.counts.ac[table]);
            }
        }
        result.lastDc = previous;
    });
    SymbolCounts counts = stripes[0].counts;
    for (std::size_t s = 1; s < stripes.size(); ++s) {
        counts.Add(stripes[s].counts);
        for (int c = 0; c < image.ComponentCount(); ++c) {
            const int table = image.Component(c).table;
            ++counts.dc[table][SizeCategory(stripes[s].firstDc[c] - stripes[s - 1].lastDc[c])];
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
    const auto estimate = static_cast<std::size_t>(1.3 * static_cast<double>(blockCount * 64)) +
                          1000 + settings.comment.size();
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

    // Second pass: the scan.
    const std::array<EncodingTable, 2> dc{EncodingTable(dcTables_[0]),
                                          EncodingTable(dcTables_[tables - 1])};
    const std::array<EncodingTable, 2> ac{EncodingTable(acTables_[0]),
                                          EncodingTable(acTables_[tables - 1])};
    std::array<int, SampledImage::kMaxComponents> previous{};
    BitWriter bits(out.Cursor());
    for (std::size_t block = 0; block < blockCount; block += blocksPerMcu) {
        for (int p = 0; p < blocksPerMcu; ++p) {
            const int table = tableOfPosition[p];
            const int component = componentOfPosition[p];
            const std::int16_t* zigzag = coefficients_.Data() + (block + p) * 64;
            WriteDc(bits, dc[table], zigzag[0] - previous[component]);
            previous[component] = zigzag[0];
            WriteAc(bits, ac[table], zigzag, nonzero_[block + p]);
        }
    }
    out.Advance(static_cast<std::size_t>(bits.Finish() - out.Cursor()));
    segments.EndOfImage();
}

}  // namespace tavren::jpeg
