#include <gtest/gtest.h>

#include "media/PpmFile.h"

using tavren::PpmFile;

TEST(PpmFile, ParsesHeadersWithCommentsAndScalesDeepSamples) {
    std::string bytes = "P6\n# made by hand\n2 1 # size\n255\n";
    bytes += std::string("\x01\x02\x03\xFF\xFE\xFD", 6);
    const tavren::cImage picture = PpmFile::Parse(bytes);
    ASSERT_EQ(picture.Width(), 2);
    ASSERT_EQ(picture.Height(), 1);
    EXPECT_EQ(picture.DIBitsPtr()[0], 1);
    EXPECT_EQ(picture.DIBitsPtr()[5], 0xFD);

    // Two bytes per sample above 255, scaled to 0..255.
    std::string deep = "P6 1 1 65535\n";
    deep += std::string("\xFF\xFF\x80\x00\x00\x00", 6);
    const tavren::cImage wide = PpmFile::Parse(deep);
    EXPECT_EQ(wide.DIBitsPtr()[0], 255);
    EXPECT_EQ(wide.DIBitsPtr()[1], 128);
    EXPECT_EQ(wide.DIBitsPtr()[2], 0);

    // maxval 15: 15 is white.
    const tavren::cImage small = PpmFile::Parse(std::string("P6 1 1 15\n\x0F\x00\x07", 13));
    EXPECT_EQ(small.DIBitsPtr()[0], 255);
    EXPECT_EQ(small.DIBitsPtr()[2], 119);
}

TEST(PpmFile, RejectsDamagedFilesWithoutReadingPastThem) {
    for (const std::string& bad :
         {std::string("P3 1 1 255\n1 2 3"), std::string("P6"),
          std::string("P6 1 1 255"),            // no byte after maxval
          std::string("P6 2 2 255\n\x01\x02"),  // short pixels
          std::string("P6 0 5 255\n"), std::string("P6 5 5 0\n"), std::string("P6 70000 1 255\n"),
          std::string("P6 -1 1 255\n"), std::string("P6 99999999999999999999 1 255\n"),
          std::string("P6 1 1 65536\n\0\0\0\0\0\0", 19)}) {
        EXPECT_THROW(PpmFile::Parse(bad), PpmFile::FormatError) << bad;
    }
}
