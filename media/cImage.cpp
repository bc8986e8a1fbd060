#include "media/cImage.h"

#include <limits>
#include <stdexcept>

namespace tavren {

void cImage::Create(int width, int height) {
    if (width < 0 || height < 0) {
        throw std::invalid_argument("cImage: negative size");
    }
    const auto rowBytes = static_cast<std::size_t>(width) * 3;
    if (height != 0 && rowBytes > std::numeric_limits<std::size_t>::max() / height) {
        throw std::length_error("cImage: too large");
    }
    bits_.assign(rowBytes * static_cast<std::size_t>(height), 0);
    width_ = width;
    height_ = height;
}

}  // namespace tavren
