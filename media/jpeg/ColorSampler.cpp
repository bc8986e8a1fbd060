#include "media/jpeg/ColorSampler.h"

#include <algorithm>
#include <cstring>

#include "media/jpeg/ColorConversion.h"
#include "media/jpeg/CpuFeatures.h"

namespace tavren::jpeg {

ColorSampler::ColorSampler(const tavren::cImage& source, int left, int top,
                           const TransformedImage& layout)
    : source_(source),
      left_(left),
      top_(top),
      layout_(layout),
      vector420_(Is420(layout) && CpuFeatures::HasAvx2()) {
    const int paddedWidth = layout.McusAcross() * layout.McuWidth();
    columnOffset_.resize(paddedWidth);
    for (int x = 0; x < paddedWidth; ++x) {
        // Past the right edge the last column repeats.
        columnOffset_[x] = 3 * static_cast<std::size_t>(left + std::min(x, layout.Width() - 1));
    }
}

bool ColorSampler::Is420(const TransformedImage& layout) {
    return layout.ComponentCount() == 3 && layout.Component(0).horizontal == 2 &&
           layout.Component(0).vertical == 2 && layout.Component(1).horizontal == 1 &&
           layout.Component(1).vertical == 1 && layout.Component(2).horizontal == 1 &&
           layout.Component(2).vertical == 1;
}

void ColorSampler::SampleRow(int mcuRow, std::int16_t* blocks) {
    if (vector420_) {
        SampleRow420Avx2(mcuRow, blocks);
    } else {
        SampleRowPortable(mcuRow, blocks);
    }
}

const std::uint8_t* ColorSampler::ExtendedRow(int line, int slot) {
    const int width = layout_.Width();
    const std::uint8_t* row = SourceRow(line);
    const int paddedWidth = layout_.McusAcross() * layout_.McuWidth();
    if (width == paddedWidth) {
        return row;
    }
    const std::size_t rowBytes = 3 * static_cast<std::size_t>(paddedWidth);
    extended_.resize(2 * rowBytes);
    std::uint8_t* copy = extended_.data() + slot * rowBytes;
    std::memcpy(copy, row, 3 * static_cast<std::size_t>(width));
    for (int x = width; x < paddedWidth; ++x) {
        std::memcpy(copy + 3 * x, row + 3 * (width - 1), 3);
    }
    return copy;
}

void ColorSampler::SampleRowPortable(int mcuRow, std::int16_t* blocks) {
    const int height = layout_.Height();
    const int maxHorizontal = layout_.MaxHorizontal();
    const int maxVertical = layout_.MaxVertical();
    const bool grey = layout_.ComponentCount() == 1;
    const int rowTop = mcuRow * layout_.McuHeight();
    for (int c = 0; c < layout_.ComponentCount(); ++c) {
        const ComponentSampling& component = layout_.Component(c);
        const bool luma = grey || c == 0;
        const ColorWeights& weights =
            luma ? kLumaWeights : (c == 1 ? kBlueDifferenceWeights : kRedDifferenceWeights);
        const int offset = luma ? kLumaOffset : 0;
        const int samplesDown = 8 * component.vertical;
        const int samplesPerMcu = 8 * component.horizontal;
        const int samplesAcross = layout_.McusAcross() * samplesPerMcu;
        for (int sy = 0; sy < samplesDown; ++sy) {
            // The pixel rows and columns one sample stands for.
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
                        source_.ScanLine(top_ + std::min(rowTop + line, height - 1));
                    for (int column = firstColumn; column < endColumn; ++column) {
                        const std::uint8_t* pixel = row + columnOffset_[column];
                        red += pixel[0];
                        green += pixel[1];
                        blue += pixel[2];
                    }
                }
                const int pixels = (endLine - firstLine) * (endColumn - firstColumn);
                std::int16_t* block =
                    BlockOf(blocks, sx / samplesPerMcu, c, sy / 8, (sx % samplesPerMcu) / 8);
                block[(sy % 8) * 8 + sx % 8] = static_cast<std::int16_t>(
                    SampleFromSums(weights, red, green, blue, pixels, offset));
            }
        }
    }
}

}  // namespace tavren::jpeg
