// The vector kernels must give exactly what the portable code gives, so that a file does not
// depend on the machine it was made on.

#include <gtest/gtest.h>

#include <bit>
#include <random>

#include "media/cJpeg.h"
#include "media/jpeg/ColorConversion.h"
#include "media/jpeg/ColorSampler.h"
#include "media/jpeg/CpuFeatures.h"
#include "media/jpeg/ForwardDct.h"
#include "media/jpeg/ImageRows.h"
#include "media/jpeg/JpegConstants.h"
#include "media/jpeg/QuantizationTable.h"
#include "media/jpeg/Quantizer.h"
#include "media/support/TestPictures.h"

using namespace tavren;
using namespace tavren::jpeg;

namespace {

// Blocks of samples of several kinds, one after another: full-range noise, black/white
// checkerboards (the largest coefficients there are), ramps, flat.
std::vector<std::int16_t> SampleBlocks() {
    std::mt19937 random(11);
    std::vector<std::int16_t> samples;
    for (int block = 0; block < 4000; ++block) {
        for (int i = 0; i < 64; ++i) {
            const int checker = (i / 8 + i % 8) % 2 ? 2040 : 0;
            const int value = block % 4 == 0   ? static_cast<int>(random() % 2041)
                              : block % 4 == 1 ? checker
                              : block % 4 == 2 ? (i % 8) * 255 + static_cast<int>(random() % 5)
                                               : 777;
            samples.push_back(static_cast<std::int16_t>(value - kLumaOffset));
        }
    }
    return samples;
}

// The picture as a screen grab holds it: four bytes B, G, R, unused, and here stored bottom-up
// as a bitmap file is, so that reading it top-down takes a negative stride.
struct BgrxPicture {
    std::vector<std::uint8_t> bytes;
    int width;
    int height;

    explicit BgrxPicture(const cImage& source)
        : bytes(static_cast<std::size_t>(source.Width()) * source.Height() * 4),
          width(source.Width()),
          height(source.Height()) {
        for (int y = 0; y < height; ++y) {
            std::uint8_t* out = bytes.data() + static_cast<std::size_t>(height - 1 - y) * width * 4;
            for (int x = 0; x < width; ++x) {
                const std::uint8_t* in = source.ScanLine(y) + 3 * x;
                out[4 * x] = in[2];
                out[4 * x + 1] = in[1];
                out[4 * x + 2] = in[0];
                out[4 * x + 3] = static_cast<std::uint8_t>(x * 37);  // must not matter
            }
        }
    }
    // The rectangle (left, top, w, h) of the picture, read top-down.
    ImageRows Rows(int left, int top, int w, int h) const {
        const std::ptrdiff_t stride = -4 * static_cast<std::ptrdiff_t>(width);
        return ImageRows(
            bytes.data() + static_cast<std::size_t>(height - 1 - top) * width * 4 + 4 * left,
            stride, w, h, PixelLayout::kBgrx32);
    }
};

}  // namespace

TEST(KernelParity, DctAndQuantizerVectorsAgreeWithTheScalarCodeBitForBit) {
    if (!CpuFeatures::HasAvx2()) {
        GTEST_SKIP() << "no AVX2 on this machine";
    }
    std::vector<ForwardDct::Kernel> transforms = {&ForwardDct::TransformAvx2};
    std::vector<Quantizer::Kernel> quantizers = {&Quantizer::QuantizeAvx2};
    if (CpuFeatures::HasAvx512()) {
        transforms.push_back(&ForwardDct::TransformAvx512);
        quantizers.push_back(&Quantizer::QuantizeAvx512);
    }
    const std::vector<std::int16_t> samples = SampleBlocks();
    const std::size_t blocks = samples.size() / 64;
    std::vector<std::int16_t> coefficients;
    // The vector kernels take blocks in pairs: odd counts leave one over.
    for (std::size_t count : {std::size_t{1}, std::size_t{7}, blocks}) {
        auto transformed = [&](ForwardDct::Kernel transform) {
            std::vector<std::int16_t> zigzag(64 * count);
            transform(samples.data(), zigzag.data(), count);
            return zigzag;
        };
        coefficients = transformed(&ForwardDct::TransformScalar);
        for (ForwardDct::Kernel transform : transforms) {
            ASSERT_EQ(transformed(transform), coefficients) << count;
        }
    }
    std::mt19937 random(5);
    for (int quality : {1, 50, 65, 100}) {
        const auto multipliers =
            QuantizationTable::FromBase(kLuminanceBase, quality).QuantizerMultipliers();
        for (std::size_t b = 0; b < blocks; ++b) {
            std::int16_t* block = coefficients.data() + 64 * b;
            if (random() % 8 == 0) {
                block[63] = 32767;  // beyond any real block: must still be limited
                block[0] = -32768;
            }
            // The mask of non-zero coefficients and the packed DC and non-zero AC values.
            auto quantized = [&](Quantizer::Kernel quantize) {
                std::vector<std::int16_t> packed(64);
                const std::uint64_t nonzero = quantize(block, multipliers.data(), packed.data());
                packed.resize(static_cast<std::size_t>(std::popcount(nonzero | 1)));
                return std::pair(nonzero, packed);
            };
            const auto scalar = quantized(&Quantizer::QuantizeScalar);
            for (Quantizer::Kernel quantize : quantizers) {
                ASSERT_EQ(quantized(quantize), scalar) << quality;
            }
            for (std::size_t i = 0; i < scalar.second.size(); ++i) {
                ASSERT_TRUE(i == 0 || scalar.second[i] != 0);
                ASSERT_LE(std::abs(scalar.second[i]), 1023);  // a baseline file's range
            }
        }
    }
}

TEST(KernelParity, ColorSamplerVectorAndPortable420AgreeAtAnySizeOffsetAndPixelLayout) {
    if (!CpuFeatures::HasAvx2()) {
        GTEST_SKIP() << "no AVX2 on this machine";
    }
    const cImage source = test::MakeNoisePicture(80, 50);
    const BgrxPicture bgrx(source);
    for (const auto& [width, height, left, top] : std::vector<std::array<int, 4>>{{1, 1, 0, 0},
                                                                                  {17, 9, 3, 2},
                                                                                  {32, 16, 48, 34},
                                                                                  {64, 48, 16, 2},
                                                                                  {79, 49, 1, 1},
                                                                                  {80, 50, 0, 0}}) {
        BlockLayout layout;
        layout.Prepare(width, height, {{2, 2, 0}, {1, 1, 1}, {1, 1, 1}});
        ImageRows rows(source.ScanLine(top) + 3 * left,
                       static_cast<std::ptrdiff_t>(source.BytesPerScanLine()), width, height,
                       PixelLayout::kRgb24);
        ColorSampler sampler(rows, layout);
        ImageRows bgrxRows = bgrx.Rows(left, top, width, height);
        ColorSampler bgrxSampler(bgrxRows, layout);
        std::vector<std::int16_t> portable(layout.BlocksPerMcuRow() * 64);
        std::vector<std::int16_t> vector(portable.size());
        std::vector<std::int16_t> bgrxPortable(portable.size());
        std::vector<std::int16_t> bgrxVector(portable.size());
        for (int row = 0; row < layout.McusDown(); ++row) {
            sampler.SampleRowPortable(row, portable.data());
            sampler.SampleRow420Avx2(row, vector.data());
            bgrxSampler.SampleRowPortable(row, bgrxPortable.data());
            bgrxSampler.SampleRow420Avx2(row, bgrxVector.data());
            EXPECT_EQ(portable, vector) << width << "x" << height << " row " << row;
            EXPECT_EQ(portable, bgrxPortable) << width << "x" << height << " row " << row;
            EXPECT_EQ(portable, bgrxVector) << width << "x" << height << " row " << row;
        }
    }
}

TEST(KernelParity, FileIsTheSameWithAndWithoutVectorUnitsThreadsAndPixelLayouts) {
    const cImage source = test::MakeTestPicture(700, 420);
    const BgrxPicture bgrx(source);
    for (const test::Sampling& s :
         std::vector<test::Sampling>{{2, 2, 1, 1, 1, 1}, {1, 1, 0, 0, 0, 0}, {1, 1, 1, 1, 1, 1}}) {
        cJpeg jpeg;
        jpeg.SetQuality(65);
        jpeg.SetSamplingFrequencies(s[0], s[1], s[2], s[3], s[4], s[5]);
        auto encode = [&](int threads, bool vectorUnits) {
            CpuFeatures::AllowVectorUnits(vectorUnits);
            jpeg.SetThreads(threads);
            jpeg.SampleHDC(source, 700, 420);
            std::vector<std::uint8_t> bytes = jpeg.Encode();
            CpuFeatures::AllowVectorUnits(true);
            return bytes;
        };
        const std::vector<std::uint8_t> reference = encode(2, true);
        EXPECT_EQ(encode(1, true), reference) << "one thread";
        EXPECT_EQ(encode(0, true), reference) << "threads chosen by load";
        EXPECT_EQ(encode(3, false), reference) << "portable code, three threads";
        // The same pixels as a screen grab holds them.
        for (bool vectorUnits : {true, false}) {
            CpuFeatures::AllowVectorUnits(vectorUnits);
            ImageRows rows = bgrx.Rows(0, 0, 700, 420);
            jpeg.SetThreads(2);
            jpeg.Sample(rows);
            CpuFeatures::AllowVectorUnits(true);
            EXPECT_EQ(jpeg.Encode(), reference) << "BGRX, bottom-up, vector units " << vectorUnits;
        }
    }
}
