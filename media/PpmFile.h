#pragma once

#include <filesystem>
#include <stdexcept>
#include <string_view>

#include "media/cImage.h"

namespace tavren {

// Binary PPM (P6) pictures, the plain format the command-line tools read and write.
class PpmFile {
  public:
    // What went wrong with a file that is not a usable P6 picture.
    class FormatError : public std::runtime_error {
      public:
        using std::runtime_error::runtime_error;
    };

    // Reads a whole file; raises FormatError for bad contents and std::system_error when the
    // file cannot be read.
    static cImage Read(const std::filesystem::path& path);
    // Parses the bytes of a file. Sizes must be 1..65535 and the maximum sample value 1..65535
    // (samples are scaled to 0..255); the first picture of the file is used.
    static cImage Parse(std::string_view bytes);

    static void Write(const std::filesystem::path& path, const cImage& image);
};

}  // namespace tavren
