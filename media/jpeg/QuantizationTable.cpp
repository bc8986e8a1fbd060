#include "media/jpeg/QuantizationTable.h"

#include <algorithm>

#include "media/jpeg/ForwardDct.h"

namespace tavren::jpeg {

int QuantizationTable::ScaleForQuality(int quality) {
    quality = std::clamp(quality, 1, 100);
    // Below 50 the percentage is 5000 / q rounded to the nearest whole number.
    return quality >= 50 ? 200 - 2 * quality : (5000 + quality / 2) / quality;
}

QuantizationTable QuantizationTable::FromBase(const std::array<std::uint16_t, 64>& zigzagBase,
                                              int quality) {
    const long scale = ScaleForQuality(quality);
    std::array<std::uint16_t, 64> entries{};
    for (int k = 0; k < 64; ++k) {
        const long scaled = zigzagBase[k] * scale + 50;
        // Rounded, not truncated: a remainder of 50 or more goes up.
        const long rounded = scaled / 100 + (scaled % 100 >= 50 ? 1 : 0);
        entries[k] = static_cast<std::uint16_t>(std::clamp(rounded, 1L, 255L));
    }
    return QuantizationTable(entries);
}

std::array<float, 64> QuantizationTable::QuantizerMultipliers() const {
    std::array<float, 64> multipliers{};
    for (int k = 0; k < 64; ++k) {
        multipliers[k] = static_cast<float>(1.0 / (entries_[k] * ForwardDct::kCoefficientOne));
    }
    return multipliers;
}

}  // namespace tavren::jpeg
