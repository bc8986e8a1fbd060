#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace {

[[maybe_unused]] std::string ReadAll(const std::filesystem::path& path) {
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

// The tool as a user runs it: a bad line is reported on its own and the lines after it are
// still answered, in order.
TEST(HandTool, AnswersEveryGoodLineAndReportsEachBadOne) {
#ifndef TAVREN_HAND_TOOL
    GTEST_SKIP() << "built without the tavren-hand program";
#else
    const std::filesystem::path tool = TAVREN_HAND_TOOL;
    ASSERT_TRUE(std::filesystem::exists(tool)) << tool;
    const char* home = std::getenv("TAVREN_HOME");
    const std::filesystem::path dir =
        home != nullptr ? std::filesystem::path(home)
                        : std::filesystem::temp_directory_path() / "tavren-hand-test";
    std::filesystem::create_directories(dir);
    {
        std::ofstream input(dir / "hands.txt");
        input << "1 13 12 11 10 40 27\n"
                 "1 1 2\n"
                 "\n"
                 "14 27 x\n"
                 "2 15\n";
    }
    const std::string command = tool.string() + " < " + (dir / "hands.txt").string() + " > " +
                                (dir / "out.txt").string() + " 2> " + (dir / "err.txt").string();
    const int status = std::system(command.c_str());
    EXPECT_NE(status, 0);  // some lines failed
    EXPECT_EQ(ReadAll(dir / "out.txt"),
              "Royal Flush!\t10354688\n"
              "Pair of Twos\t2228224\n");
    const std::string errors = ReadAll(dir / "err.txt");
    EXPECT_NE(errors.find("line 2: card 1 is given twice"), std::string::npos) << errors;
    EXPECT_NE(errors.find("line 4: bad card \"x\""), std::string::npos) << errors;
#endif
}

}  // namespace
