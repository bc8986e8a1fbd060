// The command-line tool as a user runs it.

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <cstdlib>
#include <fstream>

#include "media/PpmFile.h"
#include "media/support/JpegInspector.h"
#include "media/support/TestHelpers.h"
#include "media/support/TestPictures.h"

namespace fs = std::filesystem;
using namespace tavren::test;

#ifndef TAVREN_JPEG_TOOL
#define TAVREN_JPEG_TOOL ""
#endif

namespace {

class TavrenJpegTool : public testing::Test {
  protected:
    void SetUp() override {
        if (std::string_view(TAVREN_JPEG_TOOL).empty()) {
            GTEST_SKIP() << "the tool is not built";
        }
        tavren::PpmFile::Write(input_, picture_);
    }

    // Runs the tool with the options, then the input and output files (quoted for the shell);
    // gives its exit code and what it wrote to stderr.
    std::pair<int, std::string> Tool(const std::string& options, const fs::path& input,
                                     const fs::path& output) {
        const fs::path errors = TestFolder() / "stderr.txt";
        const std::string command = std::string("'") + TAVREN_JPEG_TOOL + "' " + options + " '" +
                                    input.string() + "' '" + output.string() + "' 2> '" +
                                    errors.string() + "'";
        const int status = std::system(command.c_str());
        const std::vector<std::uint8_t> text = ReadFileBytes(errors);
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, {text.begin(), text.end()}};
    }

    const tavren::cImage picture_ = MakeTestPicture(45, 31);
    const fs::path input_ = TestFolder() / "in.ppm";
    const fs::path output_ = TestFolder() / "out.jpg";
};

}  // namespace

TEST_F(TavrenJpegTool, DefaultsToTheScreenCaptureSettingsAndPassesItsOptionsOn) {
    auto [exitCode, errors] = Tool("", input_, output_);
    ASSERT_EQ(exitCode, 0) << errors;
    // Byte for byte what the class makes with quality 65 and 4:2:0.
    EXPECT_EQ(ReadFileBytes(output_), EncodeWithTavren(picture_, 65, {2, 2, 1, 1, 1, 1}));

    std::tie(exitCode, errors) = Tool("-q 100 -s 1,1,0,0,0,0 -c 'a note'", input_, output_);
    ASSERT_EQ(exitCode, 0) << errors;
    const JpegInspection file = InspectJpeg(ReadFileBytes(output_));
    ASSERT_EQ(file.error, "");
    EXPECT_EQ(file.components.size(), 1u);
    EXPECT_EQ(file.quantizationTables[0], std::vector<std::uint8_t>(64, 1));
    EXPECT_EQ(file.comments.at(0), "a note");
}

TEST_F(TavrenJpegTool, ErrorsExitNonZeroWithTheMessageAndWriteNothing) {
    const fs::path damaged = TestFolder() / "damaged.ppm";
    std::ofstream(damaged) << "P3 1 1 255\n1 2 3";
    const fs::path truncated = TestFolder() / "truncated.ppm";
    std::ofstream(truncated) << "P6 45 31 255\n" << std::string(45 * 31 * 3 - 1, 'x');
    struct Case {
        std::string options;
        fs::path input;
        fs::path output;
        int exitCode;  // 2 for a wrong command line, 1 when encoding fails
        std::string message;
    };
    const fs::path nowhere = TestFolder() / "nowhere" / "x.jpg";
    for (const Case& c : std::vector<Case>{
             {"-s 2,2,1,1,0,1", input_, output_, 1, "error 1: Invalid Sampling Value"},
             {"-c " + std::string(65536, 'x'), input_, output_, 1, "Illegal Comment Length"},
             {"-q 0", input_, output_, 2, "-q takes a quality from 1 to 100"},
             {"-s 2,2,1,1,1", input_, output_, 2, "-s takes six whole numbers"},
             {"", TestFolder() / "missing.ppm", output_, 1, "missing.ppm"},
             {"", damaged, output_, 1, "not a binary PPM (P6) file"},
             {"", truncated, output_, 1, "PPM file ends before its pixels do"},
             {"", input_, nowhere, 1, nowhere.string()},
         }) {
        const auto [exitCode, errors] = Tool(c.options, c.input, c.output);
        EXPECT_EQ(exitCode, c.exitCode) << c.options.substr(0, 20) << " " << errors;
        EXPECT_NE(errors.find(c.message), std::string::npos) << errors;
        EXPECT_FALSE(fs::exists(c.output));
    }
}
