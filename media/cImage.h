#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tavren {

// A 24-bit picture held top-down: row 0 is the top row, each pixel three bytes R, G, B, rows
// packed without padding. It is the pixel source the JPEG encoder samples from, so a screen grab
// or a decoded file only has to be copied in once.
class cImage {
  public:
    cImage() = default;
    cImage(int width, int height) { Create(width, height); }

    // Resizes to width x height and fills with black. Negative sizes are refused with
    // std::invalid_argument; a size whose byte count does not fit in memory with std::length_error.
    void Create(int width, int height);

    int Width() const { return width_; }
    int Height() const { return height_; }
    static constexpr int BitCount() { return 24; }
    std::size_t BytesPerScanLine() const { return static_cast<std::size_t>(width_) * 3; }
    bool Empty() const { return width_ == 0 || height_ == 0; }

    std::uint8_t* DIBitsPtr() { return bits_.data(); }
    const std::uint8_t* DIBitsPtr() const { return bits_.data(); }
    std::uint8_t* ScanLine(int y) { return bits_.data() + BytesPerScanLine() * y; }
    const std::uint8_t* ScanLine(int y) const { return bits_.data() + BytesPerScanLine() * y; }

    void SetPixel(int x, int y, std::uint8_t r, std::uint8_t g, std::uint8_t b) {
        std::uint8_t* p = ScanLine(y) + 3 * static_cast<std::size_t>(x);
        p[0] = r;
        p[1] = g;
        p[2] = b;
    }

  private:
    int width_ = 0;
    int height_ = 0;
    std::vector<std::uint8_t> bits_;
};

}  // namespace tavren
