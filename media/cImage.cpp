#include "media/cImage.h"

#include <cstring>
#include <limits>
#include <stdexcept>

namespace tavren {

void cImage::Create(int width, int height) {
    CreateUnfilled(width, height, jpeg::PixelLayout::kRgb24, false);
    if (!Empty()) {
        std::memset(bits_.Data(), 0, BytesPerScanLine() * static_cast<std::size_t>(height));
    }
}

void cImage::CreateUnfilled(int width, int height, jpeg::PixelLayout layout, bool bottomUp) {
    if (width < 0 || height < 0) {
        throw std::invalid_argument("cImage: negative size");
    }
    const auto rowBytes = static_cast<std::size_t>(width) * jpeg::BytesPerPixel(layout);
    if (height != 0 && rowBytes > std::numeric_limits<std::size_t>::max() / height) {
        throw std::length_error("cImage: too large");
    }
    // Empty until the memory is there, so a failed allocation leaves no half-made picture.
    width_ = 0;
    height_ = 0;
    bits_.Resize(rowBytes * static_cast<std::size_t>(height));
    width_ = width;
    height_ = height;
    layout_ = layout;
    bottomUp_ = bottomUp;
}

}  // namespace tavren
