// The vector kernels must give exactly what the portable code gives, so that a file does not
// depend on the machine it was made on.

#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "media/cJpeg.h"
#include "media/jpeg/ColorConversion.h"
#include "media/jpeg/ColorSampler.h"
#include "media/jpeg/CpuFeatures.h"
#include "media/jpeg/ForwardDct.h"
#include "media/jpeg/JpegConstants.h"
#include "media/jpeg/QuantizationTable.h"
#include "media/support/TestPictures.h"

using namespace tavren;
using namespace tavren::jpeg;

namespace {

class VectorUnitsOff {
  public:
    VectorUnitsOff() { CpuFeatures::AllowVectorUnits(false); }
    ~VectorUnitsOff() { CpuFeatures::AllowVectorUnits(true); }
};

std::vector<std::int16_t> AllSamples(const SampledImage& image) {
    const std::int16_t* first = const_cast<SampledImage&>(image).Block(0);
    return {first, first + image.BlockCount() * 64};
}

}  // namespace

TEST(ForwardDct, VectorAndScalarAgreeBitForBit) {
    if (!CpuFeatures::HasAvx2()) {
        GTEST_SKIP() << "no AVX2 on this machine";
    }
    std::mt19937 random(11);
    for (int quality : {1, 50, 65, 100}) {
        const auto multipliers =
            QuantizationTable::FromBase(kLuminanceBase, quality).TransformMultipliers();
        for (int trial = 0; trial < 2000; ++trial) {
            alignas(32) std::int16_t samples[64];
            const int kind = trial % 4;
            for (int i = 0; i < 64; ++i) {
                // Full range noise, extremes (black/white checkerboards), smooth ramps, flat.
                const int extreme = ((i / 8 + i % 8) % 2) ? 2040 : 0;
                const int value = kind == 0   ? static_cast<int>(random() % 2041)
                                  : kind == 1 ? extreme
                                  : kind == 2 ? (i % 8) * 255 + static_cast<int>(random() % 5)
                                              : 777;
                samples[i] = static_cast<std::int16_t>(value - kLumaOffset);
            }
            std::int16_t scalar[64];
            std::int16_t vector[64];
            const std::uint64_t scalarMask =
                ForwardDct::QuantizeBlockScalar(samples, multipliers.data(), scalar);
            const std::uint64_t vectorMask =
                ForwardDct::QuantizeBlockAvx2(samples, multipliers.data(), vector);
            ASSERT_EQ(0, std::memcmp(scalar, vector, sizeof scalar)) << quality << "/" << trial;
            ASSERT_EQ(scalarMask, vectorMask);
            for (int k = 0; k < 64; ++k) {
                ASSERT_EQ((scalarMask >> k & 1) != 0, scalar[k] != 0);
                ASSERT_LE(std::abs(scalar[k]), 1023);
            }
        }
    }
}

TEST(ForwardDct, FlatBlockHasOnlyTheDcTerm) {
    const auto multipliers =
        QuantizationTable::FromBase(kLuminanceBase, 100).TransformMultipliers();
    std::int16_t samples[64];
    std::fill(std::begin(samples), std::end(samples), static_cast<std::int16_t>(100 * kSampleOne));
    std::int16_t zigzag[64];
    EXPECT_EQ(ForwardDct::Best()(samples, multipliers.data(), zigzag), 1u);
    EXPECT_EQ(zigzag[0], 800);  // DC = 8 x mean level at divisor 1
    // A horizontal cosine of frequency 1 lands in zig-zag position 1 only (at a quality where
    // the rounding of the samples cannot show).
    const auto coarser = QuantizationTable::FromBase(kLuminanceBase, 50).TransformMultipliers();
    for (int y = 0; y < 8; ++y) {
        for (int x = 0; x < 8; ++x) {
            samples[y * 8 + x] = static_cast<std::int16_t>(
                std::lround(100 * kSampleOne * std::cos((2 * x + 1) * 3.14159265358979 / 16)));
        }
    }
    EXPECT_EQ(ForwardDct::Best()(samples, coarser.data(), zigzag), 0b10u);
    EXPECT_EQ(zigzag[1], 47);  // 565.7 / 12
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
        SampledImage portable;
        SampledImage vector;
        portable.Prepare(width, height, sampling);
        vector.Prepare(width, height, sampling);
        ColorSampler::SampleRowsPortable(source, left, top, portable, 0, portable.McusDown());
        ColorSampler::SampleRows420Avx2(source, left, top, vector, 0, vector.McusDown());
        EXPECT_EQ(AllSamples(portable), AllSamples(vector)) << width << "x" << height;
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

    SampledImage grey;
    grey.Prepare(3, 2, {{1, 1, 0}});
    ColorSampler::Sample(source, 0, 0, grey, 1);
    const std::int16_t* y = grey.Block(0);
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
            const int sourceRow = std::min(row, 1);
            const int sourceColumn = std::min(column, 2);
            EXPECT_EQ(y[row * 8 + column], y[sourceRow * 8 + sourceColumn]) << row << "," << column;
        }
    }

    SampledImage colour;
    colour.Prepare(3, 2, {{2, 2, 0}, {1, 1, 1}, {1, 1, 1}});
    ColorSampler::Sample(source, 0, 0, colour, 1);
    // The first chroma sample averages red, green, white and black: R = G = 127.5, B = 63.75.
    const double cb = -0.16874 * 127.5 - 0.33126 * 127.5 + 0.5 * 63.75;
    const double cr = 0.5 * 127.5 - 0.41869 * 127.5 - 0.08131 * 63.75;
    EXPECT_NEAR(colour.McuBlock(0, 1, 0, 0)[0], cb * 8, 0.6);
    EXPECT_NEAR(colour.McuBlock(0, 2, 0, 0)[0], cr * 8, 0.6);
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

        VectorUnitsOff portableOnly;
        jpeg.SetThreads(3);
        jpeg.SampleHDC(source, 700, 420);
        EXPECT_EQ(jpeg.Encode(), reference) << "portable code, three threads";
    }
}
