#include "media/jpeg/ColorSampler.h"

#include <algorithm>
#include <cstring>

#include "media/jpeg/ColorConversion.h"
#include "media/jpeg/CpuFeatures.h"

namespace tavren::jpeg {

ColorSampler::ColorSampler(PixelRows& source, const BlockLayout& layout)
    : source_(source),
      layout_(layout),
      vector420_(Is420(layout) && CpuFeatures::HasAvx2()),
      bytesPerPixel_(BytesPerPixel(source.Layout())),
      lines_(static_cast<std::size_t>(layout.McuHeight())) {}

bool ColorSampler::Is420(const BlockLayout& layout) {
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

void ColorSampler::FetchLines(int mcuRow) {
    const int width = layout_.Width();
    const int paddedWidth = layout_.McusAcross() * layout_.McuWidth();
    const std::size_t lineBytes = static_cast<std::size_t>(bytesPerPixel_) * width;
    const std::size_t paddedBytes = static_cast<std::size_t>(bytesPerPixel_) * paddedWidth;
    if (width != paddedWidth) {
        extended_.resize(lines_.size() * paddedBytes);
    }
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        const int y =
            std::min(mcuRow * layout_.McuHeight() + static_cast<int>(i), layout_.Height() - 1);
        const std::uint8_t* line = source_.Line(y);
        if (width == paddedWidth) {
            lines_[i] = line;
            continue;
        }
        std::uint8_t* copy = extended_.data() + i * paddedBytes;
        std::memcpy(copy, line, lineBytes);
        for (std::size_t at = lineBytes; at < paddedBytes; at += bytesPerPixel_) {
            std::memcpy(copy + at, line + lineBytes - bytesPerPixel_, bytesPerPixel_);
        }
        lines_[i] = copy;
    }
}

void ColorSampler::SampleRowPortable(int mcuRow, std::int16_t* blocks) {
    FetchLines(mcuRow);
    const int maxHorizontal = layout_.MaxHorizontal();
    const int maxVertical = layout_.MaxVertical();
    const bool grey = layout_.ComponentCount() == 1;
    // Where red, green and blue lie within a pixel.
    const bool rgb = source_.Layout() == PixelLayout::kRgb24;
    const int redAt = rgb ? 0 : 2;
    const int blueAt = rgb ? 2 : 0;
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
                    const std::uint8_t* row = lines_[static_cast<std::size_t>(line)];
                    for (int column = firstColumn; column < endColumn; ++column) {
                        const std::uint8_t* pixel =
                            row + static_cast<std::size_t>(column) * bytesPerPixel_;
                        red += pixel[redAt];
                        green += pixel[1];
                        blue += pixel[blueAt];
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
