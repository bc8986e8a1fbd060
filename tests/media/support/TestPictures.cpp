#include "media/support/TestPictures.h"

#include <algorithm>
#include <random>

#include "media/cJpeg.h"

namespace tavren::test {

tavren::cImage MakeTestPicture(int width, int height, std::uint32_t seed) {
    tavren::cImage image(width, height);
    std::mt19937 random(seed);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            int r = 40 + 180 * x / std::max(1, width);
            int g = 60 + 150 * y / std::max(1, height);
            int b = 200 - 120 * (x + y) / std::max(1, width + height);
            // A dark bar and a bright disc give edges in both directions.
            if (x > width / 3 && x < width / 3 + std::max(2, width / 8)) {
                r /= 4;
                g /= 4;
                b /= 4;
            }
            const int dx = x - 2 * width / 3;
            const int dy = y - height / 2;
            if (dx * dx + dy * dy < (width * width + height * height) / 64) {
                r = 250;
                g = 230;
                b = 40;
            }
            const int noise = static_cast<int>(random() % 9) - 4;
            image.SetPixel(x, y, static_cast<std::uint8_t>(std::clamp(r + noise, 0, 255)),
                           static_cast<std::uint8_t>(std::clamp(g + noise, 0, 255)),
                           static_cast<std::uint8_t>(std::clamp(b + noise, 0, 255)));
        }
    }
    return image;
}

tavren::cImage MakeNoisePicture(int width, int height, std::uint32_t seed) {
    tavren::cImage image(width, height);
    std::mt19937 random(seed);
    for (std::size_t i = 0; i < image.BytesPerScanLine() * height; ++i) {
        image.DIBitsPtr()[i] = static_cast<std::uint8_t>(random());
    }
    return image;
}

std::vector<std::uint8_t> EncodeWithTavren(const tavren::cImage& picture, int quality,
                                           const Sampling& sampling) {
    tavren::cJpeg jpeg;
    jpeg.SetQuality(quality);
    jpeg.SetSamplingFrequencies(sampling[0], sampling[1], sampling[2], sampling[3], sampling[4],
                                sampling[5]);
    jpeg.SampleHDC(picture, picture.Width(), picture.Height());
    return jpeg.Encode();
}

}  // namespace tavren::test
