#include "media/jpeg/ColorSampler.h"

#include <algorithm>
#include <vector>

#include "media/jpeg/ColorConversion.h"
#include "media/jpeg/CpuFeatures.h"
#include "media/jpeg/SplitWork.h"

namespace tavren::jpeg {
namespace {

// Below this many pixels a second thread costs more than it saves.
constexpr long kPixelsWorthASecondThread = 128 * 1024;

}  // namespace

bool ColorSampler::Is420(const SampledImage& image) {
    return image.ComponentCount() == 3 && image.Component(0).horizontal == 2 &&
           image.Component(0).vertical == 2 && image.Component(1).horizontal == 1 &&
           image.Component(1).vertical == 1 && image.Component(2).horizontal == 1 &&
           image.Component(2).vertical == 1;
}

void ColorSampler::Sample(const tavren::cImage& source, int left, int top, SampledImage& image,
                          int threads) {
    const bool vector = Is420(image) && CpuFeatures::HasAvx2();
    const long pixels = static_cast<long>(image.Width()) * image.Height();
    if (pixels < kPixelsWorthASecondThread) {
        threads = 1;
    }
    SplitWork(image.McusDown(), threads, [&](int, long firstRow, long endRow) {
        if (vector) {
            SampleRows420Avx2(source, left, top, image, static_cast<int>(firstRow),
                              static_cast<int>(endRow));
        } else {
            SampleRowsPortable(source, left, top, image, static_cast<int>(firstRow),
                               static_cast<int>(endRow));
        }
    });
}

void ColorSampler::SampleRowsPortable(const tavren::cImage& source, int left, int top,
                                      SampledImage& image, int firstRow, int endRow) {
    const int width = image.Width();
    const int height = image.Height();
    const int maxHorizontal = image.MaxHorizontal();
    const int maxVertical = image.MaxVertical();
    const bool grey = image.ComponentCount() == 1;

    // Byte offset of every padded pixel column in a source row: past the right edge the last
    // column repeats.
    const int paddedWidth = image.McusAcross() * image.McuWidth();
    std::vector<std::size_t> columnOffset(paddedWidth);
    for (int x = 0; x < paddedWidth; ++x) {
        columnOffset[x] = 3 * static_cast<std::size_t>(left + std::min(x, width - 1));
    }

    for (int mcuRow = firstRow; mcuRow < endRow; ++mcuRow) {
        const int rowTop = mcuRow * image.McuHeight();
        for (int c = 0; c < image.ComponentCount(); ++c) {
            const ComponentSampling& component = image.Component(c);
            const bool luma = grey || c == 0;
            const ColorWeights& weights =
                luma ? kLumaWeights : (c == 1 ? kBlueDifferenceWeights : kRedDifferenceWeights);
            const int offset = luma ? kLumaOffset : 0;
            const int samplesDown = 8 * component.vertical;
            const int samplesAcross = image.McusAcross() * 8 * component.horizontal;
            for (int sy = 0; sy < samplesDown; ++sy) {
                const int firstLine = sy * maxVertical / component.vertical;
                const int endLine = (sy + 1) * maxVertical / component.vertical;
                for (int sx = 0; sx < samplesAcross; ++sx) {
                    const int firstColumn = sx * maxHorizontal / component.horizontal;
                    const int endColumn = (sx + 1) * maxHorizontal / component.horizontal;
                    std::int64_t red = 0;
                    std::int64_t green = 0;
                    std::int64_t blue = 0;
                    for (int line = firstLine; line < endLine; ++line) {
                        const std::uint8_t* row =
                            source.ScanLine(top + std::min(rowTop + line, height - 1));
                        for (int column = firstColumn; column < endColumn; ++column) {
                            const std::uint8_t* pixel = row + columnOffset[column];
                            red += pixel[0];
                            green += pixel[1];
                            blue += pixel[2];
                        }
                    }
                    const int pixels = (endLine - firstLine) * (endColumn - firstColumn);
                    const std::size_t mcu = static_cast<std::size_t>(mcuRow) * image.McusAcross() +
                                            sx / (8 * component.horizontal);
                    std::int16_t* block =
                        image.McuBlock(mcu, c, sy / 8, (sx % (8 * component.horizontal)) / 8);
                    block[(sy % 8) * 8 + sx % 8] = static_cast<std::int16_t>(
                        SampleFromSums(weights, red, green, blue, pixels, offset));
                }
            }
        }
    }
}

}  // namespace tavren::jpeg
