#include "media/jpeg/FrameTransformer.h"

#include "media/jpeg/AlignedBuffer.h"
#include "media/jpeg/ColorSampler.h"
#include "media/jpeg/ForwardDct.h"
#include "media/jpeg/SplitWork.h"

namespace tavren::jpeg {
namespace {

// Below this many pixels a second thread costs more than it saves.
constexpr long kPixelsWorthASecondThread = 128 * 1024;

}  // namespace

void FrameTransformer::Transform(const tavren::cImage& source, int left, int top,
                                 TransformedImage& image, int threads) {
    if (static_cast<long>(image.Width()) * image.Height() < kPixelsWorthASecondThread) {
        threads = 1;
    }
    const std::size_t blocksPerRow =
        static_cast<std::size_t>(image.McusAcross()) * image.BlocksPerMcu();
    const ForwardDct::Kernel transform = ForwardDct::Best();
    SplitWork(image.McusDown(), threads, [&](int, long firstRow, long endRow) {
        ColorSampler sampler(source, left, top, image);
        AlignedBuffer<std::int16_t> samples;
        samples.Resize(blocksPerRow * 64);
        for (long row = firstRow; row < endRow; ++row) {
            sampler.SampleRow(static_cast<int>(row), samples.Data());
            std::int16_t* out = image.Block(static_cast<std::size_t>(row) * blocksPerRow);
            for (std::size_t b = 0; b < blocksPerRow; ++b) {
                transform(samples.Data() + 64 * b, out + 64 * b);
            }
        }
    });
}

}  // namespace tavren::jpeg
