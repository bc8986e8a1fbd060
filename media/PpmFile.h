#pragma once

#include <filesystem>
#include <string_view>

#include "media/PpmFormatError.h"
#include "media/cImage.h"

namespace tavren {

// Binary PPM (P6) pictures, the plain format the command-line tools read and write, as a whole
// picture in memory (PpmRows reads one band of lines at a time instead).
class PpmFile {
  public:
    using FormatError = PpmFormatError;

    // Reads a whole file; raises FormatError for bad contents and std::system_error when the
    // file cannot be read.
    static cImage Read(const std::filesystem::path& path);
    // Parses the bytes of a file. Sizes must be 1..65535 and the maximum sample value 1..65535
    // (samples are scaled to 0..255); the first picture of the file is used.
    static cImage Parse(std::string_view bytes);

    static void Write(const std::filesystem::path& path, const cImage& image);
};

}  // namespace tavren
