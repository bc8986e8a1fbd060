// Gives every test its own data root. CTest hands each test binary one TAVREN_HOME; tests of the
// same binary run in parallel processes, so before each test starts TAVREN_HOME is pointed at a
// fresh folder of its own beneath it, named after the test and the process.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#ifdef _WIN32
#include <process.h>
#define getpid _getpid
#else
#include <unistd.h>
#endif

namespace {

void setHome(const std::string& value) {
#ifdef _WIN32
    _putenv_s("TAVREN_HOME", value.c_str());
#else
    setenv("TAVREN_HOME", value.c_str(), 1);
#endif
}

class PerTestHome : public ::testing::EmptyTestEventListener {
  public:
    explicit PerTestHome(std::filesystem::path base) : base_(std::move(base)) {}

    void OnTestStart(const ::testing::TestInfo& test) override {
        folder_ = base_ / (std::string(test.test_suite_name()) + "." + test.name() + "." +
                           std::to_string(getpid()));
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
        std::filesystem::create_directories(folder_, ignored);
        setHome(folder_.string());
    }

    void OnTestEnd(const ::testing::TestInfo& test) override {
        // A failed test leaves its folder behind for a look at what it wrote.
        if (test.result() != nullptr && test.result()->Passed()) {
            std::error_code ignored;
            std::filesystem::remove_all(folder_, ignored);
        }
        setHome(base_.string());
    }

  private:
    std::filesystem::path base_;
    std::filesystem::path folder_;
};

const bool registered = [] {
    const char* home = std::getenv("TAVREN_HOME");
    const std::filesystem::path base =
        home != nullptr && *home != '\0' ? std::filesystem::path(home)
                                         : std::filesystem::temp_directory_path() / "tavren-tests";
    ::testing::UnitTest::GetInstance()->listeners().Append(new PerTestHome(base));
    return true;
}();

}  // namespace
