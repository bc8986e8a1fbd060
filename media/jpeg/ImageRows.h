#pragma once

#include <cstddef>
#include <cstdint>

#include "media/jpeg/PixelRows.h"

namespace tavren::jpeg {

// A rectangle of a picture already in memory, read where it lies: `first` is the rectangle's
// top-left pixel and `stride` the distance in bytes from one line to the next (negative for a
// picture stored bottom-up). Any line may be read at any time, from any thread.
class ImageRows : public PixelRows {
  public:
    ImageRows(const std::uint8_t* first, std::ptrdiff_t stride, int width, int height,
              PixelLayout layout)
        : PixelRows(width, height, layout), first_(first), stride_(stride) {}

    const std::uint8_t* Line(int y) override { return first_ + stride_ * y; }

  private:
    const std::uint8_t* first_;
    std::ptrdiff_t stride_;
};

}  // namespace tavren::jpeg
