#include "media/jpeg/FrameTransformer.h"

#include <memory>
#include <vector>

#include "media/jpeg/AlignedBuffer.h"
#include "media/jpeg/ColorSampler.h"
#include "media/jpeg/ForwardDct.h"
#include "media/jpeg/ParallelFor.h"
#include "media/jpeg/Quantizer.h"

namespace tavren::jpeg {
namespace {

// A piece of work worth handing to another thread: about this many pixels.
constexpr long kPixelsPerPiece = 64 * 1024;

// What each thread works with: its sampler and room for one MCU row of samples and of
// coefficients.
struct Worker {
    std::unique_ptr<ColorSampler> sampler;
    AlignedBuffer<std::int16_t> samples;
    AlignedBuffer<std::int16_t> coefficients;
};

}  // namespace

void FrameTransformer::Transform(PixelRows& source, const BlockLayout& layout,
                                 const std::array<QuantizationTable, 2>& tables, int threads,
                                 QuantizedBlocks& blocks) {
    const long rows = layout.McusDown();
    if (!source.RandomAccess()) {
        threads = 1;  // the lines come one band after another
        source.SetBand(layout.McuHeight());
    }
    const long pixelsPerRow =
        static_cast<long>(layout.McusAcross()) * layout.McuWidth() * layout.McuHeight();
    blocks.Prepare(layout, PieceCount(rows * pixelsPerRow, threads, kPixelsPerPiece), tables);
    const long pieces = static_cast<long>(blocks.Pieces().size());

    const std::size_t blocksPerRow = layout.BlocksPerMcuRow();
    const int blocksPerMcu = layout.BlocksPerMcu();
    std::vector<int> tableOfPosition(static_cast<std::size_t>(blocksPerMcu));
    std::vector<int> componentOfPosition(static_cast<std::size_t>(blocksPerMcu));
    for (int p = 0; p < blocksPerMcu; ++p) {
        componentOfPosition[p] = layout.ComponentOfMcuBlock(p);
        tableOfPosition[p] = layout.Component(componentOfPosition[p]).table;
    }
    const std::array<std::array<float, 64>, 2> multipliers = {tables[0].QuantizerMultipliers(),
                                                              tables[1].QuantizerMultipliers()};
    const ForwardDct::Kernel transform = ForwardDct::Best();
    const Quantizer::Kernel quantize = Quantizer::Best();
    std::uint64_t* nonzeroMasks = blocks.NonzeroMasks();

    std::vector<Worker> workers(static_cast<std::size_t>(std::min<long>(threads, pieces)));
    ParallelFor(pieces, static_cast<int>(workers.size()), [&](int w, long index) {
        Worker& worker = workers[static_cast<std::size_t>(w)];
        if (!worker.sampler) {
            worker.sampler = std::make_unique<ColorSampler>(source, layout);
            worker.samples.Resize(blocksPerRow * 64);
            worker.coefficients.Resize(blocksPerRow * 64);
        }
        QuantizedBlocks::Piece& piece = blocks.Pieces()[static_cast<std::size_t>(index)];
        piece.counts = SymbolCounts{};
        std::int16_t* values = piece.values.Data();
        QuantizedBlocks::DcValues previous{};
        std::array<bool, BlockLayout::kMaxComponents> seen{};
        if (index == 0) {
            seen.fill(true);  // the first block's DC is coded against 0
        }
        std::size_t block = static_cast<std::size_t>(piece.firstRow) * blocksPerRow;
        for (long row = piece.firstRow; row < piece.endRow; ++row) {
            worker.sampler->SampleRow(static_cast<int>(row), worker.samples.Data());
            transform(worker.samples.Data(), worker.coefficients.Data(), blocksPerRow);
            const std::int16_t* coefficients = worker.coefficients.Data();
            for (int mcu = 0; mcu < layout.McusAcross(); ++mcu) {
                for (int p = 0; p < blocksPerMcu; ++p, ++block, coefficients += 64) {
                    const int table = tableOfPosition[p];
                    const int component = componentOfPosition[p];
                    const std::uint64_t nonzero =
                        quantize(coefficients, multipliers[table].data(), values);
                    nonzeroMasks[block] = nonzero;
                    const int dc = values[0];
                    if (seen[component]) {
                        ++piece.counts.dc[table][SizeCategory(dc - previous[component])];
                    } else {
                        seen[component] = true;
                        piece.firstDc[component] = dc;
                    }
                    previous[component] = dc;
                    values = const_cast<std::int16_t*>(
                        CountAc(values + 1, nonzero, piece.counts.ac[table]));
                }
            }
        }
        piece.lastDc = previous;
    });
}

}  // namespace tavren::jpeg
