#include "media/jpeg/BlockLayout.h"

#include <algorithm>
#include <stdexcept>

namespace tavren::jpeg {

void BlockLayout::Prepare(int width, int height, const std::vector<ComponentSampling>& components) {
    if (width < 1 || height < 1 || width > 65535 || height > 65535) {
        throw std::out_of_range("picture size outside 1..65535");
    }
    if (components.empty() || components.size() > kMaxComponents) {
        throw std::invalid_argument("component count");
    }
    Clear();
    components_ = components;
    maxHorizontal_ = 1;
    maxVertical_ = 1;
    for (const ComponentSampling& c : components_) {
        maxHorizontal_ = std::max(maxHorizontal_, c.horizontal);
        maxVertical_ = std::max(maxVertical_, c.vertical);
    }
    mcuBlockComponent_.clear();
    for (int c = 0; c < ComponentCount(); ++c) {
        firstBlock_[c] = BlocksPerMcu();
        const int blocks = components_[c].horizontal * components_[c].vertical;
        mcuBlockComponent_.insert(mcuBlockComponent_.end(), blocks, static_cast<std::uint8_t>(c));
    }
    mcusAcross_ = (width + McuWidth() - 1) / McuWidth();
    mcusDown_ = (height + McuHeight() - 1) / McuHeight();
    width_ = width;
    height_ = height;
}

void BlockLayout::Clear() {
    width_ = 0;
    height_ = 0;
}

}  // namespace tavren::jpeg
