#include <gtest/gtest.h>

#include "media/PpmFile.h"

using tavren::PpmFile;

TEST(PpmFile, ParsesHeadersWithCommentsAndScalesDeepSamples) {
    for (const auto& [file, expected] : std::vector<std::pair<std::string, std::vector<int>>>{
             {std::string("P6\n# made by hand\n2 1 # size\n255\n\x01\x02\x03\xFF\xFE\xFD", 39),
              {1, 2, 3, 255, 254, 253}},
             // Two bytes a sample above 255, and every depth scaled to 0..255.
             {std::string("P6 1 1 65535\n\xFF\xFF\x80\x00\x00\x00", 19), {255, 128, 0}},
             {std::string("P6 1 1 15\n\x0F\x00\x07", 13), {255, 0, 119}}}) {
        const tavren::cImage picture = PpmFile::Parse(file);
        ASSERT_EQ(picture.Width(), static_cast<int>(expected.size()) / 3);
        ASSERT_EQ(picture.Height(), 1);
        EXPECT_EQ(std::vector<int>(picture.DIBitsPtr(), picture.DIBitsPtr() + expected.size()),
                  expected);
    }
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
