#include <gtest/gtest.h>

#include "media/cJpeg.h"
#include "media/jpeg/JpegConstants.h"
#include "media/jpeg/QuantizationTable.h"

using tavren::cJpeg;
using tavren::jpeg::kChrominanceBase;
using tavren::jpeg::kLuminanceBase;
using tavren::jpeg::QuantizationTable;

TEST(QuantizationTable, QualityEdgesScaleRoundAndClamp) {
    EXPECT_EQ(QuantizationTable::ScaleForQuality(1), 5000);
    EXPECT_EQ(QuantizationTable::ScaleForQuality(3), 1667);  // 1666.7, rounded, not truncated
    EXPECT_EQ(QuantizationTable::ScaleForQuality(16), 313);  // 312.5 rounds up
    EXPECT_EQ(QuantizationTable::ScaleForQuality(49), 102);
    EXPECT_EQ(QuantizationTable::ScaleForQuality(50), 100);
    EXPECT_EQ(QuantizationTable::ScaleForQuality(65), 70);
    EXPECT_EQ(QuantizationTable::ScaleForQuality(100), 0);

    // Scale 100: (base * 100 + 50) / 100 always leaves remainder 50, which rounds up.
    const QuantizationTable fifty = QuantizationTable::FromBase(kLuminanceBase, 50);
    for (int k = 0; k < 64; ++k) {
        EXPECT_EQ(fifty[k], kLuminanceBase[k] + 1) << k;
    }
    const QuantizationTable hundred = QuantizationTable::FromBase(kChrominanceBase, 100);
    const QuantizationTable one = QuantizationTable::FromBase(kLuminanceBase, 1);
    for (int k = 0; k < 64; ++k) {
        EXPECT_EQ(hundred[k], 1) << k;
        EXPECT_EQ(one[k], 255) << k;
    }
}

TEST(QuantizationTable, Quality65RoundsToNearestNotDown) {
    // Luminance zig-zag starts 16 11 12 14 12 10: times 0.70 plus 0.5 gives 11.7 8.2 8.9 10.3 8.9
    // 7.5, which round to 12 8 9 10 9 8 (truncation would give 11 8 8 10 8 7).
    const QuantizationTable table = QuantizationTable::FromBase(kLuminanceBase, 65);
    const int expected[] = {12, 8, 9, 10, 9, 8};
    for (int k = 0; k < 6; ++k) {
        EXPECT_EQ(table[k], expected[k]) << k;
    }
    // The chrominance 99s: 6930 + 50 = 6980 -> 70.
    EXPECT_EQ(QuantizationTable::FromBase(kChrominanceBase, 65)[63], 70);
}

TEST(QuantizationTable, BaseTablesAreHeldInZigzagOrder) {
    // Row 0 of table K.1 is 16 11 10 16 24 40 51 61; zig-zag visits (0,0) (0,1) (1,0) (2,0)
    // (1,1) (0,2).
    const int expected[] = {16, 11, 12, 14, 12, 10};
    for (int k = 0; k < 6; ++k) {
        EXPECT_EQ(kLuminanceBase[k], expected[k]);
    }
    EXPECT_EQ(kLuminanceBase[63], 99);
    EXPECT_EQ(kChrominanceBase[2], 18);
}

TEST(cJpegQuality, OutOfRangeValuesAreIgnoredAndKeepTheTables) {
    cJpeg jpeg;
    EXPECT_EQ(jpeg.Quality(), 75);
    jpeg.SetQuality(65);
    const auto tables65 = jpeg.QuantizationTable(0).Entries();
    jpeg.SetQuality(0);
    jpeg.SetQuality(101);
    jpeg.SetQuality(-5);
    EXPECT_EQ(jpeg.Quality(), 65);
    EXPECT_EQ(jpeg.QuantizationTable(0).Entries(), tables65);
    jpeg.SetQuality(100);
    EXPECT_EQ(jpeg.QuantizationTable(1)[10], 1);
}
