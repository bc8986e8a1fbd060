#pragma once

#include <cstdint>
#include <vector>

#include "media/cImage.h"

namespace tavren::bench {

// The encoder we measure ourselves against: libjpeg-turbo as Debian builds it (with its SIMD),
// set up as cJpeg works: float DCT, optimised Huffman tables, 4:2:0, baseline.
std::vector<std::uint8_t> EncodeWithLibjpegTurbo(const tavren::cImage& image, int quality);

// Decodes with libjpeg-turbo's default (accurate) settings; empty on failure.
std::vector<std::uint8_t> DecodeWithLibjpegTurbo(const std::vector<std::uint8_t>& jpeg, int width,
                                                 int height);

// Peak signal-to-noise ratio over all R, G and B samples, in dB.
double Psnr(const tavren::cImage& original, const std::vector<std::uint8_t>& decoded);

}  // namespace tavren::bench
