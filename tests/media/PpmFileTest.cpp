#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <system_error>

#include "media/PpmFile.h"
#include "media/PpmRows.h"
#include "media/support/TestHelpers.h"
#include "media/support/TestPictures.h"

using tavren::PpmFile;
using tavren::PpmFormatError;
using tavren::PpmRows;

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

namespace {

std::filesystem::path WriteBytes(const std::string& name, const std::string& bytes) {
    const std::filesystem::path path = tavren::test::TestFolder() / name;
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
}

}  // namespace

// The band reader gives the lines PpmFile::Parse gives, whatever the band height and sample
// depth, and refuses what it cannot deliver before any line is encoded.
TEST(PpmRows, ReadsTheSameLinesBandByBandAsTheWholeFileParse) {
    const tavren::cImage picture = tavren::test::MakeNoisePicture(37, 23);
    std::string plain = "P6\n# a comment\n37 23\n255\n";
    plain.append(reinterpret_cast<const char*>(picture.DIBitsPtr()), 37 * 23 * 3);
    std::string deep = "P6 37 23 1000\n";
    for (int i = 0; i < 37 * 23 * 3; ++i) {
        const int value = picture.DIBitsPtr()[i] * 4;  // some above the maximum
        deep += static_cast<char>(value >> 8);
        deep += static_cast<char>(value & 0xFF);
    }
    for (const std::string& file : {plain, deep, std::string(plain).replace(21, 3, "100")}) {
        const tavren::cImage expected = PpmFile::Parse(file);
        for (int band : {1, 8, 16, 40}) {
            const auto rows = PpmRows::Open(WriteBytes("in.ppm", file));
            rows->SetBand(band);
            ASSERT_EQ(rows->Width(), 37);
            ASSERT_EQ(rows->Height(), 23);
            for (int y = 0; y < 23; ++y) {
                const std::uint8_t* line = rows->Line(y);
                ASSERT_TRUE(std::equal(line, line + 37 * 3, expected.ScanLine(y))) << band << y;
                // An earlier line of the same band is still there.
                EXPECT_EQ(rows->Line(y / band * band)[0], expected.ScanLine(y / band * band)[0]);
            }
            if (band < 23) {
                EXPECT_THROW(rows->Line(0), std::logic_error);  // its band is gone
            }
        }
    }

    EXPECT_THROW(PpmRows::Open(tavren::test::TestFolder() / "missing.ppm"), std::system_error);
    EXPECT_THROW(PpmRows::Open(WriteBytes("text.ppm", "P3 1 1 255\n1 2 3")), PpmFormatError);
    EXPECT_THROW(PpmRows::Open(WriteBytes("short.ppm", plain.substr(0, plain.size() - 1))),
                 PpmFormatError);
    EXPECT_THROW(PpmRows::Open(WriteBytes("empty.ppm", "")), PpmFormatError);
}
