#pragma once

#include <cstdint>

namespace tavren::jpeg {

// How a pixel lies in memory. Rgb24 is three bytes R, G, B (a cImage, a PPM file); Bgrx32 is
// four bytes B, G, R and one unused (a screen grab: QImage::Format_RGB32 and 32-bit bitmaps on
// little-endian machines), which the sampler reads as it is instead of converting it first.
enum class PixelLayout : std::uint8_t { kRgb24, kBgrx32 };

constexpr int BytesPerPixel(PixelLayout layout) {
    return layout == PixelLayout::kRgb24 ? 3 : 4;
}

// Where the encoder takes its pixels from, one line at a time: a picture in memory, or a file
// read band by band so that the whole picture is never held at once.
class PixelRows {
  public:
    PixelRows(int width, int height, PixelLayout layout)
        : width_(width), height_(height), layout_(layout) {}
    virtual ~PixelRows() = default;
    PixelRows(const PixelRows&) = delete;
    PixelRows& operator=(const PixelRows&) = delete;

    int Width() const { return width_; }
    int Height() const { return height_; }
    PixelLayout Layout() const { return layout_; }

    // The first pixel of line y (0 .. Height() - 1), Width() pixels long. A source that is not
    // RandomAccess() is asked for its lines in bands of `band` lines from the top, every line
    // of a band before any of the next (an earlier line of the same band may be asked again);
    // its pointers stay valid until a line of a later band is asked for. A failed read raises.
    virtual const std::uint8_t* Line(int y) = 0;
    // Whether lines may be asked for in any order, from several threads at once.
    virtual bool RandomAccess() const { return true; }
    // The band height a sequential source will be asked in; called before the first Line().
    virtual void SetBand(int lines) { static_cast<void>(lines); }

  private:
    int width_;
    int height_;
    PixelLayout layout_;
};

}  // namespace tavren::jpeg
