#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <string>
#include <system_error>
#include <vector>

#include "media/BmpFile.h"
#include "media/support/TestHelpers.h"

using tavren::BmpFile;
using tavren::cImage;
using tavren::jpeg::PixelLayout;

namespace {

std::filesystem::path WriteBytes(const std::string& name, const std::vector<std::uint8_t>& bytes) {
    const std::filesystem::path path = tavren::test::TestFolder() / name;
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    return path;
}

// A 24-bit bitmap made by hand: bottom-up rows of B, G, R padded to four bytes, pixel (x, y)
// being (x, y, x + y).
std::vector<std::uint8_t> Bitmap24(int width, int height) {
    const int line = (3 * width + 3) / 4 * 4;
    std::vector<std::uint8_t> bytes(54 + static_cast<std::size_t>(line) * height, 0);
    auto put32 = [&](std::size_t at, std::uint32_t v) {
        for (int i = 0; i < 4; ++i) {
            bytes[at + i] = static_cast<std::uint8_t>(v >> (8 * i));
        }
    };
    bytes[0] = 'B';
    bytes[1] = 'M';
    put32(2, static_cast<std::uint32_t>(bytes.size()));
    put32(10, 54);
    put32(14, 40);
    put32(18, static_cast<std::uint32_t>(width));
    put32(22, static_cast<std::uint32_t>(height));
    bytes[26] = 1;
    bytes[28] = 24;
    for (int y = 0; y < height; ++y) {
        std::uint8_t* row = bytes.data() + 54 + static_cast<std::size_t>(height - 1 - y) * line;
        for (int x = 0; x < width; ++x) {
            row[3 * x] = static_cast<std::uint8_t>(x + y);
            row[3 * x + 1] = static_cast<std::uint8_t>(y);
            row[3 * x + 2] = static_cast<std::uint8_t>(x);
        }
    }
    return bytes;
}

}  // namespace

TEST(BmpFile, AnAreaOfAGrabComesBackAsTheSamePixelsInItsOwnForm) {
    // A grab 40 wide; the area is 13 x 9 from (5, 3), so its lines are not next to each other.
    std::vector<std::uint8_t> grab(40 * 20 * 4);
    std::mt19937 random(3);
    for (auto& byte : grab) {
        byte = static_cast<std::uint8_t>(random());
    }
    const std::filesystem::path path = tavren::test::TestFolder() / "area.bmp";
    for (const auto& [width, height, left] : {std::array<int, 3>{13, 9, 5}, {40, 20, 0}}) {
        const int top = width == 40 ? 0 : 3;
        BmpFile::WriteBgrx(path, grab.data() + (top * 40 + left) * 4, 40 * 4, width, height);
        EXPECT_EQ(std::filesystem::file_size(path), 54u + 4u * width * height);
        const cImage image = BmpFile::Read(path);
        ASSERT_EQ(image.Width(), width);
        ASSERT_EQ(image.Height(), height);
        EXPECT_EQ(image.Layout(), PixelLayout::kBgrx32);
        EXPECT_EQ(image.BitCount(), 32);
        for (int y = 0; y < height; ++y) {
            const std::uint8_t* expected = grab.data() + ((top + y) * 40 + left) * 4;
            EXPECT_TRUE(std::equal(expected, expected + 4 * width, image.ScanLine(y))) << y;
        }
    }
    EXPECT_THROW(BmpFile::WriteBgrx(tavren::test::TestFolder() / "no folder" / "x.bmp", grab.data(),
                                    160, 40, 20),
                 std::system_error);
}

TEST(BmpFile, ReadsBottomUp24BitFilesAndRefusesWhatItCannotHold) {
    const cImage image = BmpFile::Read(WriteBytes("24.bmp", Bitmap24(7, 5)));
    ASSERT_EQ(image.Width(), 7);
    ASSERT_EQ(image.Height(), 5);
    EXPECT_EQ(image.Layout(), PixelLayout::kRgb24);
    for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 7; ++x) {
            const std::uint8_t* p = image.ScanLine(y) + 3 * x;
            ASSERT_EQ((std::array<int, 3>{p[0], p[1], p[2]}), (std::array<int, 3>{x, y, x + y}));
        }
    }

    std::vector<std::vector<std::uint8_t>> bad;
    bad.push_back({'B', 'M', 0});
    std::vector<std::uint8_t> file = Bitmap24(7, 5);
    bad.push_back(std::vector<std::uint8_t>(file.begin(), file.end() - 1));  // short pixels
    for (const auto& [at, value] :
         std::vector<std::pair<std::size_t, std::uint8_t>>{
             {28, 8},      // palette colours
             {30, 1},      // run-length compressed
             {26, 2},      // two planes
             {14, 12},     // an old, shorter header
             {21, 0x7F},   // a width of billions
             {25, 0x80},   // a height of minus billions
             {10, 0xFF}})  // pixels said to lie past the end
    {
        bad.push_back(file);
        bad.back()[at] = value;
    }
    for (std::size_t i = 0; i < bad.size(); ++i) {
        EXPECT_THROW(BmpFile::Read(WriteBytes("bad.bmp", bad[i])), BmpFile::FormatError) << i;
    }
    EXPECT_THROW(BmpFile::Read(tavren::test::TestFolder() / "missing.bmp"), std::system_error);
}
