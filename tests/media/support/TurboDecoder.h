#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "media/cImage.h"

namespace tavren::test {

// libjpeg-turbo as the independent judge of our files (its libjpeg interface, which takes any
// sampling the library supports, where the TurboJPEG one knows only the usual few).
struct DecodedPicture {
    bool ok = false;
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels;  // RGB, or one byte per pixel when decoded as grey
};

DecodedPicture DecodeRgb(const std::vector<std::uint8_t>& jpeg);
DecodedPicture DecodeGrey(const std::vector<std::uint8_t>& jpeg);

// libjpeg-turbo's own encoding of a picture, float DCT and optimised tables, for comparison;
// sampling 1,1,0,0,0,0 means grey.
std::vector<std::uint8_t> EncodeWithTurbo(const tavren::cImage& picture, int quality,
                                          const std::array<int, 6>& sampling);

// PSNR in dB between a picture and its decoded RGB pixels (infinity when identical).
double PsnrRgb(const tavren::cImage& original, const DecodedPicture& decoded);
// PSNR between the luminance of a picture and decoded grey pixels.
double PsnrGrey(const tavren::cImage& original, const DecodedPicture& decoded);

}  // namespace tavren::test
