#pragma once

#include <cstddef>
#include <cstdint>

#include "media/jpeg/AlignedBuffer.h"
#include "media/jpeg/PixelRows.h"

namespace tavren {

// A device-independent picture, the pixel source the JPEG encoder samples from. Made with a
// size it is 24 bits a pixel, three bytes R, G, B, held top-down (row 0 is the top row) with
// rows packed without padding. A bitmap file read with BmpFile keeps the file's own form (32
// bits B, G, R, unused, and possibly bottom-up) so that its pixels are read once, straight in,
// and never converted: ScanLine hides the row order either way.
class cImage {
  public:
    cImage() = default;
    cImage(int width, int height) { Create(width, height); }
    cImage(cImage&&) noexcept = default;
    cImage& operator=(cImage&&) noexcept = default;

    // Resizes to width x height, 24 bits top-down, and fills with black. Negative sizes are
    // refused with std::invalid_argument; a size whose byte count does not fit in memory with
    // std::length_error.
    void Create(int width, int height);
    // The same in the given layout and row order, the pixels left unset for a reader to fill.
    void CreateUnfilled(int width, int height, jpeg::PixelLayout layout, bool bottomUp);

    int Width() const { return width_; }
    int Height() const { return height_; }
    jpeg::PixelLayout Layout() const { return layout_; }
    int BitCount() const { return 8 * jpeg::BytesPerPixel(layout_); }
    std::size_t BytesPerScanLine() const {
        return static_cast<std::size_t>(width_) * jpeg::BytesPerPixel(layout_);
    }
    bool Empty() const { return width_ == 0 || height_ == 0; }
    bool BottomUp() const { return bottomUp_; }
    // Bytes from one row to the row below it: negative when the rows are held bottom-up.
    std::ptrdiff_t Stride() const {
        const auto bytes = static_cast<std::ptrdiff_t>(BytesPerScanLine());
        return bottomUp_ ? -bytes : bytes;
    }

    // The rows as stored.
    std::uint8_t* DIBitsPtr() { return bits_.Data(); }
    const std::uint8_t* DIBitsPtr() const { return bits_.Data(); }
    // Row y counted from the top.
    std::uint8_t* ScanLine(int y) { return bits_.Data() + StoredRow(y) * BytesPerScanLine(); }
    const std::uint8_t* ScanLine(int y) const {
        return bits_.Data() + StoredRow(y) * BytesPerScanLine();
    }

    // For 24-bit pictures.
    void SetPixel(int x, int y, std::uint8_t r, std::uint8_t g, std::uint8_t b) {
        std::uint8_t* p = ScanLine(y) + 3 * static_cast<std::size_t>(x);
        p[0] = r;
        p[1] = g;
        p[2] = b;
    }

  private:
    std::size_t StoredRow(int y) const {
        return static_cast<std::size_t>(bottomUp_ ? height_ - 1 - y : y);
    }

    int width_ = 0;
    int height_ = 0;
    jpeg::PixelLayout layout_ = jpeg::PixelLayout::kRgb24;
    bool bottomUp_ = false;
    // Left uninitialised when made: a reader overwrites it all, and clearing megabytes first
    // is time a capture waits for.
    jpeg::AlignedBuffer<std::uint8_t> bits_;
};

}  // namespace tavren
