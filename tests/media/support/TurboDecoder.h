#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "media/cImage.h"

namespace tavren::test {

// libjpeg-turbo as the independent judge of our files (its libjpeg interface, which takes any
// sampling the library supports, where the TurboJPEG one knows only the usual few).
struct DecodedPicture {
    bool ok = false;  // decoded without an error or a warning
    int width = 0;
    int height = 0;
    int channels = 0;                  // 3 for RGB, 1 when decoded as grey
    std::vector<std::uint8_t> pixels;  // rows top-down, no padding
};

DecodedPicture Decode(const std::vector<std::uint8_t>& jpeg, bool asGrey = false);

// libjpeg-turbo's own encoding of a picture, float DCT and optimised tables, for comparison;
// sampling 1,1,0,0,0,0 means grey.
std::vector<std::uint8_t> EncodeWithTurbo(const tavren::cImage& picture, int quality,
                                          const std::array<int, 6>& sampling);

// PSNR in dB between a picture and its decoding (infinity when identical, 0 when the decoding
// failed or has another size); a grey decoding is compared with the picture's luminance.
double Psnr(const tavren::cImage& original, const DecodedPicture& decoded);

}  // namespace tavren::test
