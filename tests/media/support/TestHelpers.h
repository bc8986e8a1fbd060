#pragma once

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "media/JpegError.h"

namespace tavren::test {

// The test's own fresh data folder (every test gets one; see tests/support/PerTestHome.cpp).
inline std::filesystem::path TestFolder() {
    return std::getenv("TAVREN_HOME");
}

// The whole content of a file; empty when it cannot be read.
inline std::vector<std::uint8_t> ReadFileBytes(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// The message of the JpegError (always number 1) an action raises; empty when it raises none.
inline std::string JpegErrorText(const std::function<void()>& action) {
    try {
        action();
    } catch (const tavren::JpegError& e) {
        EXPECT_EQ(e.Number(), 1);
        return e.what();
    }
    return "";
}

}  // namespace tavren::test
