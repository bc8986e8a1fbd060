// The command-line tool as a user runs it.

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "media/PpmFile.h"
#include "media/cJpeg.h"
#include "media/support/FileBytes.h"
#include "media/support/JpegInspector.h"
#include "media/support/TestPictures.h"
#include "media/support/TurboDecoder.h"

namespace fs = std::filesystem;

namespace {

struct ToolRun {
    int exitCode = -1;
    std::string errors;
};

class TavrenJpegTool : public testing::Test {
  protected:
    void SetUp() override {
#ifdef TAVREN_JPEG_TOOL
        tool_ = TAVREN_JPEG_TOOL;
#else
        GTEST_SKIP() << "the tool is not built";
#endif
        const char* home = std::getenv("TAVREN_HOME");
        folder_ =
            (home != nullptr ? fs::path(home) : fs::temp_directory_path()) / "tavren-jpeg-tool";
        fs::create_directories(folder_);
        picture_ = tavren::test::MakeTestPicture(45, 31);
        input_ = folder_ / "in.ppm";
        tavren::PpmFile::Write(input_, picture_);
    }

    ToolRun Tool(const std::string& arguments) {
        const fs::path errors = folder_ / "stderr.txt";
        const std::string command =
            "'" + tool_.string() + "' " + arguments + " 2> '" + errors.string() + "'";
        ToolRun run;
        const int status = std::system(command.c_str());
        run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        const std::vector<std::uint8_t> text = tavren::test::ReadFileBytes(errors);
        run.errors.assign(text.begin(), text.end());
        return run;
    }

    std::vector<std::uint8_t> Output(const fs::path& path) {
        return tavren::test::ReadFileBytes(path);
    }

    fs::path tool_;
    fs::path folder_;
    fs::path input_;
    tavren::cImage picture_;
};

}  // namespace

TEST_F(TavrenJpegTool, DefaultsToTheScreenCaptureSettings) {
    const fs::path out = folder_ / "default.jpg";
    const ToolRun run = Tool("'" + input_.string() + "' '" + out.string() + "'");
    ASSERT_EQ(run.exitCode, 0) << run.errors;
    const std::vector<std::uint8_t> bytes = Output(out);
    const tavren::test::JpegInspection file = tavren::test::InspectJpeg(bytes);
    ASSERT_EQ(file.error, "");
    ASSERT_EQ(file.components.size(), 3u);
    EXPECT_EQ(file.components[0].horizontal, 2);
    EXPECT_EQ(file.components[0].vertical, 2);
    // Byte for byte what the class makes with quality 65 and 4:2:0.
    tavren::cJpeg jpeg;
    jpeg.SetQuality(65);
    jpeg.SetSamplingFrequencies(2, 2, 1, 1, 1, 1);
    jpeg.SampleHDC(picture_, picture_.Width(), picture_.Height());
    EXPECT_EQ(bytes, jpeg.Encode());
    EXPECT_TRUE(tavren::test::DecodeRgb(bytes).ok);
}

TEST_F(TavrenJpegTool, OptionsReachTheEncoder) {
    const fs::path out = folder_ / "grey.jpg";
    const ToolRun run =
        Tool("-q 100 -s 1,1,0,0,0,0 -c 'a note' '" + input_.string() + "' '" + out.string() + "'");
    ASSERT_EQ(run.exitCode, 0) << run.errors;
    const tavren::test::JpegInspection file = tavren::test::InspectJpeg(Output(out));
    ASSERT_EQ(file.error, "");
    EXPECT_EQ(file.components.size(), 1u);
    EXPECT_EQ(file.quantizationTables[0][0], 1);
    EXPECT_EQ(file.Comments().at(0), "a note");
}

TEST_F(TavrenJpegTool, ErrorsExitNonZeroWithTheMessage) {
    const fs::path out = folder_ / "bad.jpg";
    const std::string files = " '" + input_.string() + "' '" + out.string() + "'";

    ToolRun run = Tool("-s 2,2,1,1,0,1" + files);
    EXPECT_NE(run.exitCode, 0);
    EXPECT_NE(run.errors.find("Invalid Sampling Value"), std::string::npos) << run.errors;

    run = Tool("-c " + std::string(65536, 'x') + files);
    EXPECT_NE(run.exitCode, 0);
    EXPECT_NE(run.errors.find("Illegal Comment Length"), std::string::npos) << run.errors;
    EXPECT_FALSE(fs::exists(out));

    run = Tool("-q 0" + files);
    EXPECT_NE(run.exitCode, 0);
    run = Tool("'" + (folder_ / "missing.ppm").string() + "' '" + out.string() + "'");
    EXPECT_NE(run.exitCode, 0);
    run = Tool("'" + input_.string() + "' '" + (folder_ / "nowhere" / "x.jpg").string() + "'");
    EXPECT_NE(run.exitCode, 0);
    EXPECT_NE(run.errors.find("nowhere"), std::string::npos) << run.errors;
}
