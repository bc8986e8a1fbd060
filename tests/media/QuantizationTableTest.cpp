#include <gtest/gtest.h>

#include "media/cJpeg.h"
#include "media/jpeg/JpegConstants.h"
#include "media/jpeg/QuantizationTable.h"

using tavren::cJpeg;
using tavren::jpeg::kChrominanceBase;
using tavren::jpeg::kLuminanceBase;
using tavren::jpeg::QuantizationTable;

TEST(QuantizationTable, QualityEdgesScaleRoundAndClamp) {
    // 5000 / q below 50 is rounded, not truncated (3 gives 1666.7, 16 gives 312.5).
    for (const auto& [quality, scale] : std::vector<std::pair<int, int>>{
             {1, 5000}, {3, 1667}, {16, 313}, {49, 102}, {50, 100}, {65, 70}, {100, 0}}) {
        EXPECT_EQ(QuantizationTable::ScaleForQuality(quality), scale) << quality;
    }
    auto first = [](const std::array<std::uint16_t, 64>& base, int quality) {
        const QuantizationTable table = QuantizationTable::FromBase(base, quality);
        return std::vector<int>(table.Entries().begin(), table.Entries().begin() + 6);
    };
    // The base tables are held in zig-zag order: luminance starts 16 11 12 14 12 10, chrominance
    // 17 18 18 24 21 24. At 50, (base * 100 + 50) / 100 always leaves 50 over, which rounds up.
    EXPECT_EQ(first(kLuminanceBase, 50), (std::vector<int>{17, 12, 13, 15, 13, 11}));
    EXPECT_EQ(first(kChrominanceBase, 50), (std::vector<int>{18, 19, 19, 25, 22, 25}));
    // At 65, 0.70 * base + 0.5 gives 11.7 8.2 8.9 10.3 8.9 7.5: to nearest, not down.
    EXPECT_EQ(first(kLuminanceBase, 65), (std::vector<int>{12, 8, 9, 10, 9, 8}));
    EXPECT_EQ(QuantizationTable::FromBase(kChrominanceBase, 65)[63], 70);  // 99: 6930 + 50
    // 1 and 100 are clamped to the 8-bit range and to the smallest divisor.
    for (int k = 0; k < 64; ++k) {
        EXPECT_EQ(QuantizationTable::FromBase(kLuminanceBase, 1)[k], 255) << k;
        EXPECT_EQ(QuantizationTable::FromBase(kChrominanceBase, 100)[k], 1) << k;
    }
}

TEST(cJpeg, QualityOutsideOneToHundredIsIgnoredAndKeepsTheTables) {
    cJpeg jpeg;
    EXPECT_EQ(jpeg.Quality(), 75);
    jpeg.SetQuality(65);
    const auto tables =
        std::pair(jpeg.QuantizationTable(0).Entries(), jpeg.QuantizationTable(1).Entries());
    for (int ignored : {0, 101, -5}) {
        jpeg.SetQuality(ignored);
    }
    EXPECT_EQ(jpeg.Quality(), 65);
    EXPECT_EQ(std::pair(jpeg.QuantizationTable(0).Entries(), jpeg.QuantizationTable(1).Entries()),
              tables);
}
