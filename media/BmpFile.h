#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <stdexcept>

#include "media/cImage.h"

namespace tavren {

// Device-independent bitmap files (.bmp), as the screen capture keeps the chosen area for a
// moment: written from a screen grab's 32-bit pixels as they are, read back into a cImage in
// the file's own form, so that neither way converts a pixel.
class BmpFile {
  public:
    // A file that is not a bitmap this class reads: anything but uncompressed 24 or 32 bits a
    // pixel, a size outside 1..65535, or fewer bytes than its pixels need.
    class FormatError : public std::runtime_error {
      public:
        using std::runtime_error::runtime_error;
    };

    // Writes width x height pixels of four bytes B, G, R, unused (a line `stride` bytes after
    // the one above it, from `first`, the top-left pixel) as a 32-bit top-down bitmap. A file
    // that cannot be written raises std::system_error and is removed.
    static void WriteBgrx(const std::filesystem::path& path, const std::uint8_t* first,
                          std::ptrdiff_t stride, int width, int height);

    // Reads a whole bitmap: 32 bits a pixel in one read into a cImage of the same form, 24 bits
    // into an RGB cImage. Raises std::system_error when the file cannot be read and FormatError
    // for one it does not take, before any memory is set aside for its pixels.
    static cImage Read(const std::filesystem::path& path);
};

}  // namespace tavren
