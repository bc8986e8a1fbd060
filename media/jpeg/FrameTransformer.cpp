#include "media/jpeg/FrameTransformer.h"

#include <memory>
#include <vector>

#include "media/jpeg/AlignedBuffer.h"
#include "media/jpeg/ColorSampler.h"
#include "media/jpeg/ForwardDct.h"
#include "media/jpeg/ParallelFor.h"

namespace tavren::jpeg {
namespace {

// A piece of work worth handing to another thread: about this many pixels.
constexpr long kPixelsPerPiece = 64 * 1024;

}  // namespace

void FrameTransformer::Transform(const tavren::cImage& source, int left, int top,
                                 TransformedImage& image, int threads) {
    const long rows = image.McusDown();
    const long pixelsPerRow =
        static_cast<long>(image.McusAcross()) * image.McuWidth() * image.McuHeight();
    const long pieces = PieceCount(rows * pixelsPerRow, threads, kPixelsPerPiece);
    const std::size_t blocksPerRow =
        static_cast<std::size_t>(image.McusAcross()) * image.BlocksPerMcu();
    const ForwardDct::Kernel transform = ForwardDct::Best();

    // Per thread: a sampler and room for one MCU row of samples.
    const int workers = static_cast<int>(std::min<long>(threads, pieces));
    std::vector<std::unique_ptr<ColorSampler>> samplers(workers);
    std::vector<AlignedBuffer<std::int16_t>> samples(workers);
    ParallelFor(pieces, workers, [&](int worker, long piece) {
        if (!samplers[worker]) {
            samplers[worker] = std::make_unique<ColorSampler>(source, left, top, image);
            samples[worker].Resize(blocksPerRow * 64);
        }
        std::int16_t* rowSamples = samples[worker].Data();
        for (long row = rows * piece / pieces; row < rows * (piece + 1) / pieces; ++row) {
            samplers[worker]->SampleRow(static_cast<int>(row), rowSamples);
            transform(rowSamples, image.Block(static_cast<std::size_t>(row) * blocksPerRow),
                      blocksPerRow);
        }
    });
}

}  // namespace tavren::jpeg
