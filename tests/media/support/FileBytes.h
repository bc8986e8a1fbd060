#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <vector>

namespace tavren::test {

// The whole content of a file; empty when it cannot be read.
inline std::vector<std::uint8_t> ReadFileBytes(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::vector<std::uint8_t> bytes;
    char chunk[4096];
    while (file.read(chunk, sizeof chunk) || file.gcount() > 0) {
        bytes.insert(bytes.end(), chunk, chunk + file.gcount());
    }
    return bytes;
}

}  // namespace tavren::test
