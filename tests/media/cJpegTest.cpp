#include <gtest/gtest.h>

#include "ScreenImage.h"
#include "media/cJpeg.h"
#include "media/support/JpegInspector.h"
#include "media/support/TestHelpers.h"
#include "media/support/TestPictures.h"
#include "media/support/TurboDecoder.h"

using namespace tavren;
using namespace tavren::test;

namespace {

// Whether libjpeg-turbo can decode a sampling: whole-number ratios and at most ten blocks
// per MCU (the limit of the JPEG standard for interleaved scans).
bool TurboDecodes(const Sampling& s) {
    const int maxH = std::max({s[0], s[2], s[4]});
    const int maxV = std::max({s[1], s[3], s[5]});
    const int blocks = s[0] * s[1] + s[2] * s[3] + s[4] * s[5];
    return blocks <= 10 && maxH % s[0] == 0 && maxH % s[2] == 0 && maxH % s[4] == 0 &&
           maxV % s[1] == 0 && maxV % s[3] == 0 && maxV % s[5] == 0;
}

using Components = std::vector<JpegInspection::Component>;

}  // namespace

TEST(cJpeg, FileLayoutIsBaselineJfifInOrderWithThePicturesOwnSize) {
    cJpeg jpeg;
    jpeg.SetQuality(65);
    jpeg.SetComment("hello there");
    const cImage picture = MakeTestPicture(40, 30);
    jpeg.SampleHDC(picture, 40, 30);
    const JpegInspection colour = InspectJpeg(jpeg.Encode());
    ASSERT_EQ(colour.error, "");
    EXPECT_EQ(colour.markers, (std::vector<std::uint8_t>{0xD8, 0xE0, 0xFE, 0xFE, 0xDB, 0xDB, 0xC0,
                                                         0xC4, 0xC4, 0xC4, 0xC4, 0xDA, 0xD9}));
    EXPECT_EQ(colour.jfif,
              (std::vector<std::uint8_t>{'J', 'F', 'I', 'F', 0, 1, 1, 0, 0, 1, 0, 1, 0, 0}));
    EXPECT_EQ(colour.comments.at(0), "hello there");
    EXPECT_EQ(colour.comments.at(1).rfind("JPEG Encoder Class\r\n", 0), 0u);
    // The frame carries the picture's size, not that of the whole MCUs it was extended to.
    EXPECT_EQ(colour.width, 40);
    EXPECT_EQ(colour.height, 30);
    EXPECT_EQ(colour.components, (Components{{2, 2, 0}, {1, 1, 1}, {1, 1, 1}}));
    for (int slot : {0, 1}) {
        const auto& entries = jpeg.QuantizationTable(slot).Entries();
        EXPECT_EQ(colour.quantizationTables[slot],
                  std::vector<std::uint8_t>(entries.begin(), entries.end()));
    }
    EXPECT_EQ(colour.blocks, 3 * 2 * (4 + 1 + 1));

    // Grey: one table of each kind, one component, and no empty comment segment.
    jpeg.SetComment("");
    jpeg.SetSamplingFrequencies(1, 1, 0, 0, 0, 0);
    jpeg.SampleHDC(picture, 40, 30);
    const JpegInspection grey = InspectJpeg(jpeg.Encode());
    ASSERT_EQ(grey.error, "");
    EXPECT_EQ(grey.markers,
              (std::vector<std::uint8_t>{0xD8, 0xE0, 0xFE, 0xDB, 0xC0, 0xC4, 0xC4, 0xDA, 0xD9}));
    EXPECT_EQ(grey.components, (Components{{1, 1, 0}}));
    EXPECT_EQ(grey.blocks, 5 * 4);
}

TEST(cJpeg, SamplingErrorsLeaveTheEarlierSampling) {
    cJpeg jpeg;
    jpeg.SetSamplingFrequencies(1, 1, 1, 1, 1, 1);
    for (const Sampling& bad : std::vector<Sampling>{{2, 2, 1, 1, 0, 1},
                                                     {0, 1, 1, 1, 1, 1},
                                                     {5, 1, 1, 1, 1, 1},
                                                     {1, 1, 1, 1, 1, -1},
                                                     {1, 1, 0, 0, 0, 1},
                                                     {1, 1, 4, 4, 4, 5}}) {
        EXPECT_EQ(JpegErrorText([&] {
                      jpeg.SetSamplingFrequencies(bad[0], bad[1], bad[2], bad[3], bad[4], bad[5]);
                  }),
                  "Invalid Sampling Value")
            << testing::PrintToString(bad);
    }
    const cImage picture = MakeTestPicture(16, 16);
    jpeg.SampleHDC(picture, 16, 16);
    EXPECT_EQ(InspectJpeg(jpeg.Encode()).components, (Components{{1, 1, 0}, {1, 1, 1}, {1, 1, 1}}));

    // Grey ignores the first pair, even out of range.
    EXPECT_EQ(JpegErrorText([&] { jpeg.SetSamplingFrequencies(9, 9, 0, 0, 0, 0); }), "");
    EXPECT_EQ(jpeg.ComponentCount(), 1);
}

TEST(cJpeg, CommentOfExactly65535CharactersIsAcceptedAndSplit) {
    cJpeg jpeg;
    std::string longest(65535, 'c');
    longest[0] = 'a';
    longest[65534] = 'z';
    jpeg.SetComment(longest);
    EXPECT_EQ(JpegErrorText([&] { jpeg.SetComment(std::string(65536, 'x')); }),
              "Illegal Comment Length");
    EXPECT_EQ(jpeg.Comment(), longest);

    const cImage picture = MakeTestPicture(9, 9);
    jpeg.SampleHDC(picture, 9, 9);
    const std::vector<std::uint8_t> bytes = jpeg.Encode();
    const JpegInspection file = InspectJpeg(bytes);
    ASSERT_EQ(file.error, "");
    // A segment holds 65533 bytes at most, so the comment continues in a second one.
    ASSERT_EQ(file.comments.size(), 3u);
    EXPECT_EQ(file.comments[0].size(), 65533u);
    EXPECT_EQ(file.comments[0] + file.comments[1], longest);
    EXPECT_TRUE(Decode(bytes).ok);
}

TEST(cJpeg, RoundTripsAcrossSizesQualitiesAndSamplings) {
    // Judged against libjpeg-turbo encoding the same pixels the same way: our tables round
    // their entries up where libjpeg's round to nearest, so we may trail it a little.
    const std::vector<Sampling> samplings = {
        {2, 2, 1, 1, 1, 1}, {1, 1, 1, 1, 1, 1}, {2, 1, 1, 1, 1, 1}, {1, 2, 1, 1, 1, 1},
        {4, 1, 1, 1, 1, 1}, {1, 1, 2, 2, 1, 1}, {1, 1, 0, 0, 0, 0}};
    for (const auto& [width, height] : std::vector<std::pair<int, int>>{
             {1, 1}, {17, 9}, {8, 8}, {16, 16}, {33, 47}, {100, 75}, {257, 130}}) {
        const cImage picture = MakeTestPicture(width, height);
        for (const Sampling& sampling : samplings) {
            for (int quality : {1, 50, 65, 100}) {
                SCOPED_TRACE(testing::Message() << width << "x" << height << " q" << quality << " "
                                                << testing::PrintToString(sampling));
                const bool grey = sampling[2] == 0;
                const DecodedPicture ours =
                    Decode(EncodeWithTavren(picture, quality, sampling), grey);
                ASSERT_TRUE(ours.ok);
                EXPECT_EQ(ours.width, width);
                EXPECT_EQ(ours.height, height);
                if (width * height < 64) {
                    // A pixel or two is all edge and luck of rounding; it has to come back close.
                    EXPECT_GE(Psnr(picture, ours), quality >= 50 ? 35 : 20);
                    continue;
                }
                const double theirs =
                    Psnr(picture, Decode(EncodeWithTurbo(picture, quality, sampling), grey));
                // At 100 every divisor is 1 and libjpeg's integer samples come back exactly,
                // where ours keep fractions that the decoder then rounds.
                const double allowance = quality == 100 ? 1.5 : quality == 50 ? 0.8 : 0.5;
                EXPECT_GE(Psnr(picture, ours), theirs - allowance);
                if (quality == 100 && sampling[0] == 1 && sampling[1] == 1 && sampling[2] != 2) {
                    EXPECT_GE(Psnr(picture, ours), 45);  // nothing sub-sampled: almost exact
                }
            }
        }
    }
}

// At the screen capture's settings, on a screen-like picture and on the test picture, the file
// is no larger than libjpeg-turbo's with the same settings (float DCT, optimised tables) and
// within 0.05 dB of its quality, and the same file whatever the threads.
TEST(cJpeg, AtTheCaptureSettingsNoLargerThanLibjpegTurboAndWithin5HundredthsOfADb) {
    const Sampling s420 = {2, 2, 1, 1, 1, 1};
    for (const cImage& picture :
         {tavren::bench::MakeScreenImage(1920, 1080), MakeTestPicture(640, 400)}) {
        const std::vector<std::uint8_t> theirs = EncodeWithTurbo(picture, 65, s420);
        const double theirPsnr = Psnr(picture, Decode(theirs));
        cJpeg jpeg;
        jpeg.SetQuality(65);
        std::vector<std::uint8_t> first;
        for (int threads : {1, 2}) {
            jpeg.SetThreads(threads);
            jpeg.SampleHDC(picture, picture.Width(), picture.Height());
            const std::vector<std::uint8_t> ours = jpeg.Encode();
            if (first.empty()) {
                first = ours;
                EXPECT_LE(ours.size(), theirs.size()) << picture.Width();
                EXPECT_GE(Psnr(picture, Decode(ours)), theirPsnr - 0.05) << picture.Width();
            }
            EXPECT_EQ(ours, first) << picture.Width() << " with " << threads << " threads";
        }
    }
}

TEST(cJpeg, EverySamplingTheClassAcceptsMakesASoundFile) {
    const cImage picture = MakeTestPicture(37, 29);
    int decodedByTurbo = 0;
    for (int code = 0; code < 4096; ++code) {
        Sampling s{};
        for (int i = 0; i < 6; ++i) {
            s[i] = 1 + (code >> (2 * i) & 3);
        }
        SCOPED_TRACE(testing::PrintToString(s));
        const std::vector<std::uint8_t> bytes = EncodeWithTavren(picture, 75, s);
        const JpegInspection file = InspectJpeg(bytes);
        ASSERT_EQ(file.error, "");
        EXPECT_EQ(file.components, (Components{{s[0], s[1], 0}, {s[2], s[3], 1}, {s[4], s[5], 1}}));
        if (TurboDecodes(s)) {
            ++decodedByTurbo;
            const DecodedPicture decoded = Decode(bytes);
            ASSERT_TRUE(decoded.ok);
            const double theirs = Psnr(picture, Decode(EncodeWithTurbo(picture, 75, s)));
            EXPECT_GE(Psnr(picture, decoded), theirs - 0.5);
        }
    }
    EXPECT_GT(decodedByTurbo, 100);
}

TEST(cJpeg, NoisePictureAtFullQualityNeedsStuffingAndStillDecodes) {
    const cImage noise = MakeNoisePicture(129, 67);
    const std::vector<std::uint8_t> bytes = EncodeWithTavren(noise, 100, {1, 1, 1, 1, 1, 1});
    // Larger than the raw pixels: far beyond the usual size estimate's comfort.
    EXPECT_GT(bytes.size(), 129u * 67u * 3);
    int stuffed = 0;
    for (std::size_t i = 0; i + 1 < bytes.size(); ++i) {
        stuffed += bytes[i] == 0xFF && bytes[i + 1] == 0x00;
    }
    EXPECT_GT(stuffed, 10);
    ASSERT_EQ(InspectJpeg(bytes).error, "");
    EXPECT_GE(Psnr(noise, Decode(bytes)), 40);
}

TEST(cJpeg, SampleHDCTakesTheRectangleAtTheSourcePosition) {
    const cImage screen = MakeTestPicture(120, 90);
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
    const cImage picture = MakeTestPicture(64, 48);
    cJpeg jpeg;
    jpeg.SampleHDC(picture, 64, 48);
    const std::filesystem::path path = TestFolder() / "capture_ss0.jpg";
    jpeg.SaveFile(path);
    EXPECT_EQ(ReadFileBytes(path), jpeg.Encode());

    const std::filesystem::path nowhere = TestFolder() / "no such folder" / "x.jpg";
    try {
        jpeg.SaveFile(nowhere);
        ADD_FAILURE() << "saved into a missing folder";
    } catch (const JpegFileError& e) {
        EXPECT_EQ(e.Path(), nowhere.string());
        EXPECT_EQ(e.code(), std::errc::no_such_file_or_directory);
    }
    EXPECT_FALSE(std::filesystem::exists(nowhere));
}
