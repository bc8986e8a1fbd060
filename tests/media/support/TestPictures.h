#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "media/cImage.h"

namespace tavren::test {

// Sampling factors H1,V1,H2,V2,H3,V3 as cJpeg takes them; 1,1,0,0,0,0 is grey.
using Sampling = std::array<int, 6>;

// A picture with smooth colour gradients, a few hard-edged shapes and mild noise: the mix a
// JPEG encoder must handle, small enough for many round trips.
tavren::cImage MakeTestPicture(int width, int height, std::uint32_t seed = 7);

// Every pixel random: the worst case for size and for byte stuffing.
tavren::cImage MakeNoisePicture(int width, int height, std::uint32_t seed = 7);

// The whole picture through cJpeg with the given settings.
std::vector<std::uint8_t> EncodeWithTavren(const tavren::cImage& picture, int quality,
                                           const Sampling& sampling);

}  // namespace tavren::test
