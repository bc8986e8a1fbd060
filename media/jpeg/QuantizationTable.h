#pragma once

#include <array>
#include <cstdint>

namespace tavren::jpeg {

// One table of 64 quantisation divisors in zig-zag order, scaled from a base table by quality.
class QuantizationTable {
  public:
    QuantizationTable() { entries_.fill(1); }
    explicit QuantizationTable(const std::array<std::uint16_t, 64>& zigzagEntries)
        : entries_(zigzagEntries) {}

    // Quality 1..100 to the percentage the base table is scaled by: 5000 / q (rounded) below
    // 50, 200 - 2q from 50 on (so 100 asks for all ones).
    static int ScaleForQuality(int quality);

    // Each entry is (base * scale + 50) / 100 rounded to nearest, then kept within 1..255 so
    // that it fits an 8-bit table.
    static QuantizationTable FromBase(const std::array<std::uint16_t, 64>& zigzagBase, int quality);

    std::uint16_t operator[](int zigzagIndex) const { return entries_[zigzagIndex]; }
    const std::array<std::uint16_t, 64>& Entries() const { return entries_; }

    // What the transform's coefficients (ForwardDct's fixed point, zig-zag order) are
    // multiplied by to quantise them: one over the divisor and the fixed-point unit.
    std::array<float, 64> QuantizerMultipliers() const;

  private:
    std::array<std::uint16_t, 64> entries_;
};

}  // namespace tavren::jpeg
