// The vector kernels must give exactly what the portable code gives, so that a file does not
// depend on the machine it was made on.

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <random>

#include "media/cJpeg.h"
#include "media/jpeg/ColorConversion.h"
#include "media/jpeg/ColorSampler.h"
#include "media/jpeg/CpuFeatures.h"
#include "media/jpeg/ForwardDct.h"
#include "media/jpeg/JpegConstants.h"
#include "media/jpeg/QuantizationTable.h"
#include "media/jpeg/Quantizer.h"
#include "media/support/TestPictures.h"

using namespace tavren;
using namespace tavren::jpeg;

namespace {

class VectorUnitsOff {
  public:
    VectorUnitsOff() { CpuFeatures::AllowVectorUnits(false); }
    ~VectorUnitsOff() { CpuFeatures::AllowVectorUnits(true); }
};

// Blocks of samples of several kinds: full-range noise, black/white checkerboards (the largest
// coefficients there are), ramps, flat.
std::vector<std::array<std::int16_t, 64>> SampleBlocks() {
    std::mt19937 random(11);
    std::vector<std::array<std::int16_t, 64>> blocks;
    for (int trial = 0; trial < 4000; ++trial) {
        std::array<std::int16_t, 64> samples{};
        const int kind = trial % 4;
        for (int i = 0; i < 64; ++i) {
            const int extreme = ((i / 8 + i % 8) % 2) ? 2040 : 0;
            const int value = kind == 0   ? static_cast<int>(random() % 2041)
                              : kind == 1 ? extreme
                              : kind == 2 ? (i % 8) * 255 + static_cast<int>(random() % 5)
                                          : 777;
            samples[i] = static_cast<std::int16_t>(value - kLumaOffset);
        }
        blocks.push_back(samples);
    }
    return blocks;
}

std::vector<std::int16_t> Transformed(ForwardDct::Kernel transform,
                                      const std::array<std::int16_t, 64>& samples) {
    std::vector<std::int16_t> zigzag(64);
    transform(samples.data(), zigzag.data(), 1);
    return zigzag;
}

// Many blocks in one call, as the vector kernels take them in pairs.
std::vector<std::int16_t> Transformed(ForwardDct::Kernel transform,
                                      const std::vector<std::array<std::int16_t, 64>>& blocks,
                                      std::size_t count) {
    std::vector<std::int16_t> samples;
    for (std::size_t b = 0; b < count; ++b) {
        samples.insert(samples.end(), blocks[b].begin(), blocks[b].end());
    }
    std::vector<std::int16_t> zigzag(64 * count);
    transform(samples.data(), zigzag.data(), count);
    return zigzag;
}

struct Quantized {
    std::uint64_t nonzero;
    std::vector<std::int16_t> packed;
    bool operator==(const Quantized&) const = default;
};

Quantized QuantizedWith(Quantizer::Kernel quantize, const std::vector<std::int16_t>& coefficients,
                        const std::array<float, 64>& multipliers) {
    Quantized q{0, std::vector<std::int16_t>(64)};
    q.nonzero = quantize(coefficients.data(), multipliers.data(), q.packed.data());
    q.packed.resize(static_cast<std::size_t>(std::popcount(q.nonzero | 1)));
    return q;
}

std::vector<std::int16_t> SampledRow(ColorSampler& sampler, const TransformedImage& layout, int row,
                                     bool vector) {
    std::vector<std::int16_t> blocks(static_cast<std::size_t>(layout.McusAcross()) *
                                     layout.BlocksPerMcu() * 64);
    if (vector) {
        sampler.SampleRow420Avx2(row, blocks.data());
    } else {
        sampler.SampleRowPortable(row, blocks.data());
    }
    return blocks;
}

}  // namespace

TEST(ForwardDct, VectorAndScalarAgreeBitForBit) {
    if (!CpuFeatures::HasAvx2()) {
        GTEST_SKIP() << "no AVX2 on this machine";
    }
    const auto blocks = SampleBlocks();
    for (std::size_t count : {blocks.size(), std::size_t{1}, std::size_t{7}}) {
        const std::vector<std::int16_t> scalar =
            Transformed(&ForwardDct::TransformScalar, blocks, count);
        ASSERT_EQ(scalar, Transformed(&ForwardDct::TransformAvx2, blocks, count)) << count;
        if (CpuFeatures::HasAvx512()) {
            ASSERT_EQ(scalar, Transformed(&ForwardDct::TransformAvx512, blocks, count)) << count;
        }
    }
}

TEST(Quantizer, VectorAndScalarAgreeAndPackTheNonZeroValues) {
    if (!CpuFeatures::HasAvx2()) {
        GTEST_SKIP() << "no AVX2 on this machine";
    }
    std::mt19937 random(5);
    for (int quality : {1, 50, 65, 100}) {
        const auto multipliers =
            QuantizationTable::FromBase(kLuminanceBase, quality).QuantizerMultipliers();
        for (const auto& samples : SampleBlocks()) {
            std::vector<std::int16_t> coefficients = Transformed(ForwardDct::Best(), samples);
            if (random() % 8 == 0) {
                coefficients[63] = 32767;  // beyond any real block: must still be limited
                coefficients[0] = -32768;
            }
            const Quantized scalar =
                QuantizedWith(&Quantizer::QuantizeScalar, coefficients, multipliers);
            ASSERT_EQ(scalar, QuantizedWith(&Quantizer::QuantizeAvx2, coefficients, multipliers));
            if (CpuFeatures::HasAvx512()) {
                ASSERT_EQ(scalar,
                          QuantizedWith(&Quantizer::QuantizeAvx512, coefficients, multipliers));
            }
            std::size_t next = 1;
            for (int k = 1; k < 64; ++k) {
                if (scalar.nonzero >> k & 1) {
                    ASSERT_NE(scalar.packed[next], 0);
                    ASSERT_LE(std::abs(scalar.packed[next]), 1023);
                    ++next;
                }
            }
            ASSERT_EQ(next, scalar.packed.size());
            ASSERT_LE(std::abs(scalar.packed[0]), 1023);
        }
    }
}

TEST(ForwardDct, FlatBlockHasOnlyTheDcTermAndACosineOnlyItsOwn) {
    std::array<std::int16_t, 64> samples{};
    samples.fill(static_cast<std::int16_t>(100 * kSampleOne));
    std::int16_t zigzag[64];
    ForwardDct::Best()(samples.data(), zigzag, 1);
    // DC = 8 x the mean level, in the coefficients' fixed point.
    EXPECT_EQ(zigzag[0], 800 * ForwardDct::kCoefficientOne);
    for (int k = 1; k < 64; ++k) {
        EXPECT_EQ(zigzag[k], 0) << k;
    }
    // A horizontal cosine of frequency 1 (amplitude 100) lands in zig-zag position 1 only:
    // 100 * 4 * sqrt(2) = 565.7, which quality 50's divisor 12 (11 rounded up) makes 47.
    for (int y = 0; y < 8; ++y) {
        for (int x = 0; x < 8; ++x) {
            samples[y * 8 + x] = static_cast<std::int16_t>(
                std::lround(100 * kSampleOne * std::cos((2 * x + 1) * 3.14159265358979 / 16)));
        }
    }
    ForwardDct::Best()(samples.data(), zigzag, 1);
    const auto multipliers = QuantizationTable::FromBase(kLuminanceBase, 50).QuantizerMultipliers();
    std::int16_t packed[64];
    EXPECT_EQ(Quantizer::Best()(zigzag, multipliers.data(), packed), 0b10u);
    EXPECT_EQ(packed[1], 47);
}

TEST(ColorSampler, VectorAndPortable420AgreeAtAnySizeAndOffset) {
    if (!CpuFeatures::HasAvx2()) {
        GTEST_SKIP() << "no AVX2 on this machine";
    }
    const cImage source = test::MakeNoisePicture(80, 50);
    const std::vector<ComponentSampling> sampling = {{2, 2, 0}, {1, 1, 1}, {1, 1, 1}};
    for (const auto& [width, height, left, top] : std::vector<std::array<int, 4>>{{1, 1, 0, 0},
                                                                                  {17, 9, 3, 2},
                                                                                  {32, 16, 48, 34},
                                                                                  {64, 48, 16, 2},
                                                                                  {79, 49, 1, 1},
                                                                                  {80, 50, 0, 0}}) {
        TransformedImage layout;
        layout.Prepare(width, height, sampling);
        ColorSampler sampler(source, left, top, layout);
        for (int row = 0; row < layout.McusDown(); ++row) {
            EXPECT_EQ(SampledRow(sampler, layout, row, false),
                      SampledRow(sampler, layout, row, true))
                << width << "x" << height << " row " << row;
        }
    }
}

TEST(ColorSampler, ConvertsAveragesAndRepeatsTheEdges) {
    // 3x2 pixels: red, green, blue over white, black, grey 128.
    cImage source(3, 2);
    source.SetPixel(0, 0, 255, 0, 0);
    source.SetPixel(1, 0, 0, 255, 0);
    source.SetPixel(2, 0, 0, 0, 255);
    source.SetPixel(0, 1, 255, 255, 255);
    source.SetPixel(1, 1, 0, 0, 0);
    source.SetPixel(2, 1, 128, 128, 128);

    TransformedImage grey;
    grey.Prepare(3, 2, {{1, 1, 0}});
    ColorSampler greySampler(source, 0, 0, grey);
    const std::vector<std::int16_t> y = SampledRow(greySampler, grey, 0, false);
    auto level = [](double luma) { return static_cast<int>(std::lround(luma * 8)) - 1024; };
    EXPECT_EQ(y[0], level(0.299 * 255));
    EXPECT_EQ(y[1], level(0.587 * 255));
    EXPECT_EQ(y[2], level(0.114 * 255));
    EXPECT_EQ(y[8], 1016);   // white
    EXPECT_EQ(y[9], -1024);  // black
    EXPECT_EQ(y[10], 0);     // 128
    for (int row = 0; row < 8; ++row) {
        for (int column = 0; column < 8; ++column) {
            // Past the picture the last column and then the last row repeat.
            EXPECT_EQ(y[row * 8 + column], y[std::min(row, 1) * 8 + std::min(column, 2)])
                << row << "," << column;
        }
    }

    TransformedImage colour;
    colour.Prepare(3, 2, {{2, 2, 0}, {1, 1, 1}, {1, 1, 1}});
    ColorSampler colourSampler(source, 0, 0, colour);
    const std::vector<std::int16_t> blocks = SampledRow(colourSampler, colour, 0, false);
    // The first chroma sample averages red, green, white and black: R = G = 127.5, B = 63.75.
    const double cb = -0.16874 * 127.5 - 0.33126 * 127.5 + 0.5 * 63.75;
    const double cr = 0.5 * 127.5 - 0.41869 * 127.5 - 0.08131 * 63.75;
    EXPECT_NEAR(blocks[4 * 64], cb * 8, 0.6);
    EXPECT_NEAR(blocks[5 * 64], cr * 8, 0.6);
}

TEST(cJpegParity, FileIsTheSameWithAndWithoutVectorUnitsAndThreads) {
    const cImage source = test::MakeTestPicture(700, 420);
    for (const auto& s : std::vector<std::array<int, 6>>{
             {2, 2, 1, 1, 1, 1}, {1, 1, 0, 0, 0, 0}, {1, 1, 1, 1, 1, 1}}) {
        cJpeg jpeg;
        jpeg.SetQuality(65);
        jpeg.SetSamplingFrequencies(s[0], s[1], s[2], s[3], s[4], s[5]);
        jpeg.SetThreads(2);
        jpeg.SampleHDC(source, 700, 420);
        const std::vector<std::uint8_t> reference = jpeg.Encode();

        jpeg.SetThreads(1);
        jpeg.SampleHDC(source, 700, 420);
        EXPECT_EQ(jpeg.Encode(), reference) << "one thread";

        jpeg.SetThreads(0);
        jpeg.SampleHDC(source, 700, 420);
        EXPECT_EQ(jpeg.Encode(), reference) << "threads chosen by load";

        VectorUnitsOff portableOnly;
        jpeg.SetThreads(3);
        jpeg.SampleHDC(source, 700, 420);
        EXPECT_EQ(jpeg.Encode(), reference) << "portable code, three threads";
    }
}
