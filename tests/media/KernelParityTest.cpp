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

TEST(KernelParity, ColorSamplerVectorAndPortable420AgreeAtAnySizeAndOffset) {
    if (!CpuFeatures::HasAvx2()) {
        GTEST_SKIP() << "no AVX2 on this machine";
    }
    const cImage source = test::MakeNoisePicture(80, 50);
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
        std::vector<std::int16_t> portable(static_cast<std::size_t>(layout.McusAcross()) *
                                           layout.BlocksPerMcu() * 64);
        std::vector<std::int16_t> vector(portable.size());
        for (int row = 0; row < layout.McusDown(); ++row) {
            sampler.SampleRowPortable(row, portable.data());
            sampler.SampleRow420Avx2(row, vector.data());
            EXPECT_EQ(portable, vector) << width << "x" << height << " row " << row;
        }
    }
}

TEST(KernelParity, FileIsTheSameWithAndWithoutVectorUnitsAndThreads) {
    const cImage source = test::MakeTestPicture(700, 420);
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
    }
}
