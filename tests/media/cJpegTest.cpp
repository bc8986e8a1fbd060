#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <functional>

#include "media/cJpeg.h"
#include "media/support/FileBytes.h"
#include "media/support/JpegInspector.h"
#include "media/support/TestPictures.h"
#include "media/support/TurboDecoder.h"

using namespace tavren;
using tavren::test::InspectJpeg;
using tavren::test::JpegInspection;

namespace {

std::vector<std::uint8_t> EncodePicture(const cImage& picture, int quality,
                                        const std::array<int, 6>& sampling) {
    cJpeg jpeg;
    jpeg.SetQuality(quality);
    jpeg.SetSamplingFrequencies(sampling[0], sampling[1], sampling[2], sampling[3], sampling[4],
                                sampling[5]);
    jpeg.SampleHDC(picture, picture.Width(), picture.Height());
    return jpeg.Encode();
}

std::string ErrorText(const std::function<void()>& action) {
    try {
        action();
    } catch (const JpegError& e) {
        EXPECT_EQ(e.Number(), 1);
        return e.what();
    }
    return "";
}

std::filesystem::path ScratchFolder() {
    const char* home = std::getenv("TAVREN_HOME");
    std::filesystem::path folder =
        home != nullptr ? std::filesystem::path(home) : std::filesystem::temp_directory_path();
    folder /= "jpeg-scratch";
    std::filesystem::create_directories(folder);
    return folder;
}

// Whether libjpeg-turbo can decode a sampling: whole-number ratios and at most ten blocks
// per MCU (the limit of the JPEG standard for interleaved scans).
bool TurboDecodes(const std::array<int, 6>& s) {
    const int maxH = std::max({s[0], s[2], s[4]});
    const int maxV = std::max({s[1], s[3], s[5]});
    const int blocks = s[0] * s[1] + s[2] * s[3] + s[4] * s[5];
    return blocks <= 10 && maxH % s[0] == 0 && maxH % s[2] == 0 && maxH % s[4] == 0 &&
           maxV % s[1] == 0 && maxV % s[3] == 0 && maxV % s[5] == 0;
}

}  // namespace

TEST(cJpeg, FileLayoutIsBaselineJfifInOrder) {
    cJpeg jpeg;
    jpeg.SetQuality(65);
    jpeg.SetComment("hello there");
    const cImage picture = test::MakeTestPicture(40, 30);
    jpeg.SampleHDC(picture, 40, 30);
    const JpegInspection colour = InspectJpeg(jpeg.Encode());
    ASSERT_EQ(colour.error, "");
    EXPECT_EQ(colour.Markers(), (std::vector<std::uint8_t>{0xD8, 0xE0, 0xFE, 0xFE, 0xDB, 0xDB, 0xC0,
                                                           0xC4, 0xC4, 0xC4, 0xC4, 0xDA, 0xD9}));
    const std::vector<std::uint8_t> app0 = colour.segments[1].payload;
    EXPECT_EQ(app0, (std::vector<std::uint8_t>{'J', 'F', 'I', 'F', 0, 1, 1, 0, 0, 1, 0, 1, 0, 0}));
    const std::vector<std::string> comments = colour.Comments();
    EXPECT_EQ(comments[0], "hello there");
    EXPECT_EQ(comments[1].rfind("JPEG Encoder Class\r\n", 0), 0u);
    EXPECT_EQ(colour.precision, 8);
    EXPECT_EQ(colour.width, 40);
    EXPECT_EQ(colour.height, 30);
    ASSERT_EQ(colour.components.size(), 3u);
    EXPECT_EQ(colour.components[0].horizontal, 2);
    EXPECT_EQ(colour.components[0].vertical, 2);
    EXPECT_EQ(colour.components[0].quantizationTable, 0);
    EXPECT_EQ(colour.components[2].horizontal, 1);
    EXPECT_EQ(colour.components[2].quantizationTable, 1);
    // The tables written are the ones quality 65 makes.
    for (int k = 0; k < 64; ++k) {
        EXPECT_EQ(colour.quantizationTables[0][k], jpeg.QuantizationTable(0)[k]);
        EXPECT_EQ(colour.quantizationTables[1][k], jpeg.QuantizationTable(1)[k]);
    }
    // 3 x 2 MCUs of 4 + 1 + 1 blocks.
    EXPECT_EQ(colour.blocks.size(), 36u);

    // Grey: one table of each kind, one component, and no empty comment segment.
    jpeg.SetComment("");
    jpeg.SetSamplingFrequencies(1, 1, 0, 0, 0, 0);
    jpeg.SampleHDC(picture, 40, 30);
    const JpegInspection grey = InspectJpeg(jpeg.Encode());
    ASSERT_EQ(grey.error, "");
    EXPECT_EQ(grey.Markers(),
              (std::vector<std::uint8_t>{0xD8, 0xE0, 0xFE, 0xDB, 0xC0, 0xC4, 0xC4, 0xDA, 0xD9}));
    ASSERT_EQ(grey.components.size(), 1u);
    EXPECT_EQ(grey.components[0].horizontal, 1);
    EXPECT_EQ(grey.blocks.size(), 20u);
}

TEST(cJpeg, SamplingErrorsLeaveTheEarlierSampling) {
    cJpeg jpeg;
    jpeg.SetSamplingFrequencies(1, 1, 1, 1, 1, 1);
    for (const auto& bad : std::vector<std::array<int, 6>>{{2, 2, 1, 1, 0, 1},
                                                           {0, 1, 1, 1, 1, 1},
                                                           {5, 1, 1, 1, 1, 1},
                                                           {1, 1, 1, 1, 1, -1},
                                                           {1, 1, 0, 0, 0, 1},
                                                           {1, 1, 4, 4, 4, 5}}) {
        EXPECT_EQ(ErrorText([&] {
                      jpeg.SetSamplingFrequencies(bad[0], bad[1], bad[2], bad[3], bad[4], bad[5]);
                  }),
                  "Invalid Sampling Value");
    }
    const cImage picture = test::MakeTestPicture(16, 16);
    jpeg.SampleHDC(picture, 16, 16);
    const JpegInspection file = InspectJpeg(jpeg.Encode());
    ASSERT_EQ(file.components.size(), 3u);
    EXPECT_EQ(file.components[0].horizontal, 1);  // still 4:4:4
    EXPECT_EQ(file.blocks.size(), 12u);

    // Grey ignores the first pair, even out of range.
    EXPECT_EQ(ErrorText([&] { jpeg.SetSamplingFrequencies(9, 9, 0, 0, 0, 0); }), "");
    EXPECT_EQ(jpeg.ComponentCount(), 1);
}

TEST(cJpeg, CommentOfExactly65535CharactersIsAccepted) {
    cJpeg jpeg;
    std::string longest(65535, 'c');
    longest[0] = 'a';
    longest[65534] = 'z';
    jpeg.SetComment(longest);
    EXPECT_EQ(jpeg.Comment().size(), 65535u);

    EXPECT_EQ(ErrorText([&] { jpeg.SetComment(std::string(65536, 'x')); }),
              "Illegal Comment Length");
    EXPECT_EQ(jpeg.Comment(), longest);

    const cImage picture = test::MakeTestPicture(9, 9);
    jpeg.SampleHDC(picture, 9, 9);
    const std::vector<std::uint8_t> bytes = jpeg.Encode();
    const JpegInspection file = InspectJpeg(bytes);
    ASSERT_EQ(file.error, "");
    // A segment holds 65533 bytes at most, so the comment continues in a second one.
    const std::vector<std::string> comments = file.Comments();
    ASSERT_EQ(comments.size(), 3u);
    EXPECT_EQ(comments[0] + comments[1], longest);
    EXPECT_TRUE(test::DecodeRgb(bytes).ok);
}

TEST(cJpeg, RoundTripsAcrossSizesQualitiesAndSamplings) {
    // Judged against libjpeg-turbo encoding the same pixels the same way: our tables round
    // their entries up where libjpeg's round to nearest, so we may trail it a little.
    const std::vector<std::array<int, 6>> samplings = {
        {2, 2, 1, 1, 1, 1}, {1, 1, 1, 1, 1, 1}, {2, 1, 1, 1, 1, 1}, {1, 2, 1, 1, 1, 1},
        {4, 1, 1, 1, 1, 1}, {1, 1, 2, 2, 1, 1}, {1, 1, 0, 0, 0, 0}};
    for (const auto& [width, height] : std::vector<std::pair<int, int>>{
             {1, 1}, {17, 9}, {8, 8}, {16, 16}, {33, 47}, {100, 75}, {257, 130}}) {
        const cImage picture = test::MakeTestPicture(width, height);
        for (const std::array<int, 6>& sampling : samplings) {
            for (int quality : {1, 50, 65, 100}) {
                SCOPED_TRACE(testing::Message()
                             << width << "x" << height << " q" << quality << " sampling "
                             << sampling[0] << sampling[1] << sampling[2] << sampling[3]
                             << sampling[4] << sampling[5]);
                const bool grey = sampling[2] == 0;
                auto decode = grey ? test::DecodeGrey : test::DecodeRgb;
                auto psnr = grey ? test::PsnrGrey : test::PsnrRgb;
                const test::DecodedPicture ours = decode(EncodePicture(picture, quality, sampling));
                ASSERT_TRUE(ours.ok);
                EXPECT_EQ(ours.width, width);
                EXPECT_EQ(ours.height, height);
                if (width * height < 64) {
                    // A pixel or two is all edge and luck of rounding; it has to come back close.
                    EXPECT_GE(psnr(picture, ours), quality >= 50 ? 35 : 20);
                    continue;
                }
                const double theirs =
                    psnr(picture, decode(test::EncodeWithTurbo(picture, quality, sampling)));
                // At 100 every divisor is 1 and libjpeg's integer samples come back exactly,
                // where ours keep fractions that the decoder then rounds.
                const double allowance = quality == 100 ? 1.5 : quality == 50 ? 0.8 : 0.5;
                EXPECT_GE(psnr(picture, ours), theirs - allowance);
                if (quality == 100 && sampling[0] == 1 && sampling[1] == 1 && sampling[2] != 2) {
                    EXPECT_GE(psnr(picture, ours), 45);  // nothing sub-sampled: almost exact
                }
            }
        }
    }
}

TEST(cJpeg, EverySamplingTheClassAcceptsMakesASoundFile) {
    const cImage picture = test::MakeTestPicture(37, 29);
    int decodedByTurbo = 0;
    for (int code = 0; code < 4096; ++code) {
        std::array<int, 6> s{};
        for (int i = 0; i < 6; ++i) {
            s[i] = 1 + (code >> (2 * i) & 3);
        }
        const std::vector<std::uint8_t> bytes = EncodePicture(picture, 75, s);
        const JpegInspection file = InspectJpeg(bytes);
        ASSERT_EQ(file.error, "") << code;
        const int maxH = std::max({s[0], s[2], s[4]});
        const int maxV = std::max({s[1], s[3], s[5]});
        const std::size_t mcus = static_cast<std::size_t>((37 + 8 * maxH - 1) / (8 * maxH)) *
                                 ((29 + 8 * maxV - 1) / (8 * maxV));
        ASSERT_EQ(file.blocks.size(), mcus * (s[0] * s[1] + s[2] * s[3] + s[4] * s[5]));
        if (TurboDecodes(s)) {
            ++decodedByTurbo;
            const test::DecodedPicture decoded = test::DecodeRgb(bytes);
            ASSERT_TRUE(decoded.ok) << code;
            const double theirs =
                test::PsnrRgb(picture, test::DecodeRgb(test::EncodeWithTurbo(picture, 75, s)));
            EXPECT_GE(test::PsnrRgb(picture, decoded), theirs - 0.5) << code;
        }
    }
    EXPECT_GT(decodedByTurbo, 100);
}

TEST(cJpeg, NoisePictureAtFullQualityNeedsStuffingAndStillDecodes) {
    const cImage noise = test::MakeNoisePicture(129, 67);
    const std::vector<std::uint8_t> bytes = EncodePicture(noise, 100, {1, 1, 1, 1, 1, 1});
    // Larger than the raw pixels: far beyond the usual size estimate's comfort.
    EXPECT_GT(bytes.size(), 129u * 67u * 3);
    int stuffed = 0;
    for (std::size_t i = 0; i + 1 < bytes.size(); ++i) {
        stuffed += bytes[i] == 0xFF && bytes[i + 1] == 0x00;
    }
    EXPECT_GT(stuffed, 10);
    ASSERT_EQ(InspectJpeg(bytes).error, "");
    EXPECT_GE(test::PsnrRgb(noise, test::DecodeRgb(bytes)), 40);
}

TEST(cJpeg, SampleHDCTakesTheRectangleAtTheSourcePosition) {
    const cImage screen = test::MakeTestPicture(120, 90);
    cImage crop(50, 40);
    for (int y = 0; y < 40; ++y) {
        std::copy_n(screen.ScanLine(y + 30) + 3 * 25, 3 * 50, crop.ScanLine(y));
    }
    cJpeg fromScreen;
    fromScreen.SampleHDC(screen, 50, 40, 25, 30);
    cJpeg fromCrop;
    fromCrop.SampleHDC(crop, 50, 40);
    EXPECT_EQ(fromScreen.Encode(), fromCrop.Encode());

    cJpeg jpeg;
    EXPECT_THROW(jpeg.Encode(), std::logic_error);  // nothing sampled yet
    EXPECT_THROW(jpeg.SampleHDC(screen, 0, 10), std::out_of_range);
    EXPECT_THROW(jpeg.SampleHDC(screen, 10, 10, 115, 0), std::out_of_range);
    EXPECT_THROW(jpeg.SampleHDC(screen, 10, 10, 0, -1), std::out_of_range);
    EXPECT_THROW(jpeg.SampleHDC(screen, 121, 90), std::out_of_range);
}

TEST(cJpeg, SaveFileWritesTheEncodedBytesOrAFileError) {
    const cImage picture = test::MakeTestPicture(64, 48);
    cJpeg jpeg;
    jpeg.SampleHDC(picture, 64, 48);
    const std::filesystem::path path = ScratchFolder() / "capture_ss0.jpg";
    jpeg.SaveFile(path);
    EXPECT_EQ(test::ReadFileBytes(path), jpeg.Encode());

    const std::filesystem::path nowhere = ScratchFolder() / "no such folder" / "x.jpg";
    try {
        jpeg.SaveFile(nowhere);
        ADD_FAILURE() << "saved into a missing folder";
    } catch (const JpegFileError& e) {
        EXPECT_EQ(e.Path(), nowhere.string());
        EXPECT_EQ(e.code(), std::errc::no_such_file_or_directory);
    }
    EXPECT_FALSE(std::filesystem::exists(nowhere));
}
