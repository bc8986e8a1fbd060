#include "ScreenImage.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <random>

namespace tavren::bench {
namespace {

struct Rgb {
    int r, g, b;
};

class Painter {
  public:
    Painter(tavren::cImage& image, std::uint32_t seed) : image_(image), rng_(seed) {}

    int Random(int below) { return below <= 0 ? 0 : static_cast<int>(rng_() % below); }

    void Blend(int x, int y, Rgb c, double alpha) {
        if (x < 0 || y < 0 || x >= image_.Width() || y >= image_.Height()) {
            return;
        }
        std::uint8_t* p = image_.ScanLine(y) + 3 * x;
        const int a = static_cast<int>(alpha * 256);
        p[0] = static_cast<std::uint8_t>((p[0] * (256 - a) + c.r * a) >> 8);
        p[1] = static_cast<std::uint8_t>((p[1] * (256 - a) + c.g * a) >> 8);
        p[2] = static_cast<std::uint8_t>((p[2] * (256 - a) + c.b * a) >> 8);
    }

    void Fill(int x0, int y0, int w, int h, Rgb c) {
        for (int y = std::max(0, y0); y < std::min(image_.Height(), y0 + h); ++y) {
            for (int x = std::max(0, x0); x < std::min(image_.Width(), x0 + w); ++x) {
                image_.SetPixel(x, y, static_cast<std::uint8_t>(c.r),
                                static_cast<std::uint8_t>(c.g), static_cast<std::uint8_t>(c.b));
            }
        }
    }

    void Frame(int x0, int y0, int w, int h, Rgb c) {
        Fill(x0, y0, w, 1, c);
        Fill(x0, y0 + h - 1, w, 1, c);
        Fill(x0, y0, 1, h, c);
        Fill(x0 + w - 1, y0, 1, h, c);
    }

    void HorizontalGradient(int x0, int y0, int w, int h, Rgb from, Rgb to) {
        for (int x = 0; x < w; ++x) {
            const double t = w > 1 ? static_cast<double>(x) / (w - 1) : 0;
            Fill(x0 + x, y0, 1, h, Mix(from, to, t));
        }
    }

    void VerticalGradient(int x0, int y0, int w, int h, Rgb from, Rgb to) {
        for (int y = 0; y < h; ++y) {
            const double t = h > 1 ? static_cast<double>(y) / (h - 1) : 0;
            Fill(x0, y0 + y, w, 1, Mix(from, to, t));
        }
    }

    // One glyph: a 5x7 pattern picked from the character code, drawn with soft horizontal edges
    // the way grey-scale font smoothing leaves them.
    void Glyph(int x0, int y0, int code, int scale, Rgb ink) {
        std::uint32_t bits = static_cast<std::uint32_t>(code) * 2654435761u;
        bits ^= bits >> 13;
        bits *= 0x5bd1e995u;
        bits ^= bits >> 15;
        for (int row = 0; row < 7; ++row) {
            // Glyph-like rows: a stem on the left or right most of the time, a bar now and then.
            const std::uint32_t pick = (bits >> (row * 4)) & 0xF;
            int mask = 0;
            if (row == 0 || row == 6 || row == 3) {
                mask = (pick & 3) == 0 ? 0x1F : (pick & 3) == 1 ? 0x0E : 0x11;
            } else {
                mask = (pick & 1 ? 0x10 : 0) | (pick & 2 ? 0x01 : 0) | (pick & 12 ? 0 : 0x04);
            }
            for (int col = 0; col < 5; ++col) {
                if ((mask >> (4 - col) & 1) == 0) {
                    continue;
                }
                for (int sy = 0; sy < scale; ++sy) {
                    for (int sx = 0; sx < scale; ++sx) {
                        Blend(x0 + col * scale + sx, y0 + row * scale + sy, ink, 0.92);
                    }
                    Blend(x0 + col * scale - 1, y0 + row * scale + sy, ink, 0.3);
                    Blend(x0 + (col + 1) * scale, y0 + row * scale + sy, ink, 0.3);
                }
            }
        }
    }

    void TextLine(int x0, int y0, int maxWidth, int scale, Rgb ink) {
        const int advance = 6 * scale;
        int x = x0;
        const int words = 3 + Random(9);
        for (int w = 0; w < words && x + advance < x0 + maxWidth; ++w) {
            const int letters = 2 + Random(8);
            for (int l = 0; l < letters && x + advance < x0 + maxWidth; ++l) {
                Glyph(x, y0, 'a' + Random(26), scale, ink);
                x += advance;
            }
            x += advance;
        }
    }

    // A photograph stand-in: sky, hills and foliage from a few octaves of value noise.
    void Photo(int x0, int y0, int w, int h) {
        for (int y = 0; y < h; ++y) {
            for (int x = 0; x < w; ++x) {
                const double u = static_cast<double>(x) / w;
                const double v = static_cast<double>(y) / h;
                const double n = Noise(x * 0.02, y * 0.02) * 0.5 + Noise(x * 0.08, y * 0.08) * 0.3 +
                                 Noise(x * 0.35, y * 0.35) * 0.2;
                const double horizon = 0.45 + 0.08 * std::sin(u * 9.0) + 0.05 * std::sin(u * 23.0);
                Rgb c;
                if (v < horizon) {
                    c = Mix({70, 120, 200}, {200, 220, 240}, v / horizon);
                    c = Mix(c, {250, 250, 250}, std::clamp(n * 1.6 - 0.6, 0.0, 1.0));
                } else {
                    c = Mix({60, 110, 40}, {120, 90, 50}, std::clamp(n, 0.0, 1.0));
                    c = Mix(c, {20, 40, 15}, std::clamp((v - horizon) * 1.2, 0.0, 0.7));
                }
                const int grain = static_cast<int>((Noise(x * 1.7, y * 1.7) - 0.5) * 24);
                image_.SetPixel(x0 + x, y0 + y, Clamp(c.r + grain), Clamp(c.g + grain),
                                Clamp(c.b + grain));
            }
        }
    }

    static Rgb Mix(Rgb a, Rgb b, double t) {
        return {static_cast<int>(a.r + (b.r - a.r) * t), static_cast<int>(a.g + (b.g - a.g) * t),
                static_cast<int>(a.b + (b.b - a.b) * t)};
    }

  private:
    static std::uint8_t Clamp(int v) { return static_cast<std::uint8_t>(std::clamp(v, 0, 255)); }

    static double Lattice(int x, int y) {
        std::uint32_t h =
            static_cast<std::uint32_t>(x) * 374761393u + static_cast<std::uint32_t>(y) * 668265263u;
        h = (h ^ (h >> 13)) * 1274126177u;
        return ((h ^ (h >> 16)) & 0xFFFF) / 65535.0;
    }

    static double Noise(double x, double y) {
        const int ix = static_cast<int>(std::floor(x));
        const int iy = static_cast<int>(std::floor(y));
        const double fx = x - ix;
        const double fy = y - iy;
        const double sx = fx * fx * (3 - 2 * fx);
        const double sy = fy * fy * (3 - 2 * fy);
        const double top = Lattice(ix, iy) + (Lattice(ix + 1, iy) - Lattice(ix, iy)) * sx;
        const double bottom =
            Lattice(ix, iy + 1) + (Lattice(ix + 1, iy + 1) - Lattice(ix, iy + 1)) * sx;
        return top + (bottom - top) * sy;
    }

    tavren::cImage& image_;
    std::mt19937 rng_;
};

}  // namespace

tavren::cImage MakeScreenImage(int width, int height, std::uint32_t seed) {
    tavren::cImage image(width, height);
    Painter paint(image, seed);
    const int scale = std::max(1, height / 1080);
    paint.VerticalGradient(0, 0, width, height, {30, 60, 110}, {90, 140, 190});

    const std::array<Rgb, 5> inks = {Rgb{0, 0, 0}, Rgb{0, 0, 160}, Rgb{160, 0, 0}, Rgb{0, 120, 0},
                                     Rgb{120, 0, 120}};
    // Four windows tiling most of the screen, as a busy desktop looks.
    const int windows[4][4] = {{2, 2, 55, 60}, {50, 8, 48, 50}, {4, 58, 42, 38}, {48, 55, 50, 42}};
    for (const auto& win : windows) {
        const int x = win[0] * width / 100;
        const int y = win[1] * height / 100;
        const int w = win[2] * width / 100;
        const int h = win[3] * height / 100;
        paint.Fill(x, y, w, h, {240, 240, 240});
        paint.Frame(x, y, w, h, {100, 100, 100});
        const int titleHeight = 24 * scale;
        paint.HorizontalGradient(x + 1, y + 1, w - 2, titleHeight, {10, 36, 106}, {166, 202, 240});
        paint.TextLine(x + 8 * scale, y + 8 * scale, w / 2, scale, {255, 255, 255});
        // A toolbar of small icons and a row of buttons.
        for (int i = 0; i < 12; ++i) {
            const int ix = x + 8 * scale + i * 22 * scale;
            if (ix + 16 * scale > x + w) {
                break;
            }
            paint.Fill(ix, y + titleHeight + 6 * scale, 16 * scale, 16 * scale,
                       {paint.Random(256), paint.Random(256), paint.Random(256)});
        }
        const int bodyTop = y + titleHeight + 30 * scale;
        paint.Fill(x + 6 * scale, bodyTop, w - 12 * scale, h - titleHeight - 60 * scale,
                   {255, 255, 255});
        paint.Frame(x + 6 * scale, bodyTop, w - 12 * scale, h - titleHeight - 60 * scale,
                    {160, 160, 160});
        for (int line = 0; bodyTop + (line + 2) * 14 * scale < y + h - 34 * scale; ++line) {
            const Rgb ink = inks[paint.Random(10) < 6 ? 0 : 1 + paint.Random(4)];
            paint.TextLine(x + 12 * scale, bodyTop + 6 * scale + line * 14 * scale, w - 24 * scale,
                           scale, ink);
        }
        for (int b = 0; b < 2; ++b) {
            const int bx = x + w - (b + 1) * 90 * scale;
            const int by = y + h - 28 * scale;
            paint.VerticalGradient(bx, by, 80 * scale, 22 * scale, {250, 250, 250},
                                   {210, 210, 210});
            paint.Frame(bx, by, 80 * scale, 22 * scale, {112, 112, 112});
            paint.TextLine(bx + 16 * scale, by + 7 * scale, 50 * scale, scale, {0, 0, 0});
        }
    }
    // The photograph sits in the second window, as a picture viewer shows it.
    paint.Photo(56 * width / 100, 20 * height / 100, 36 * width / 100, 32 * height / 100);
    // A task bar.
    paint.VerticalGradient(0, height - 30 * scale, width, 30 * scale, {36, 94, 220}, {24, 64, 160});
    paint.TextLine(width - 120 * scale, height - 20 * scale, 110 * scale, scale, {255, 255, 255});
    return image;
}

}  // namespace tavren::bench
