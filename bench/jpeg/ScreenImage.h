#pragma once

#include <cstdint>

#include "media/cImage.h"

namespace tavren::bench {

// A desktop-like picture as a screen capture sees it: a gradient wallpaper, windows with
// gradient title bars, flat panels and buttons, lines of anti-aliased text in several colours,
// and a photograph-like region with smooth shading and fine texture. Deterministic for a seed,
// so both encoders of a benchmark run see the same pixels.
tavren::cImage MakeScreenImage(int width, int height, std::uint32_t seed = 1);

}  // namespace tavren::bench
