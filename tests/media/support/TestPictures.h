#pragma once

#include <cstdint>

#include "media/cImage.h"

namespace tavren::test {

// A picture with smooth colour gradients, a few hard-edged shapes and mild noise: the mix a
// JPEG encoder must handle, small enough for many round trips.
tavren::cImage MakeTestPicture(int width, int height, std::uint32_t seed = 7);

// Every pixel random: the worst case for size and for byte stuffing.
tavren::cImage MakeNoisePicture(int width, int height, std::uint32_t seed = 7);

}  // namespace tavren::test
