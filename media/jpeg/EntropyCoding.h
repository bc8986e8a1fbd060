#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <cstdlib>

#include "media/jpeg/BitWriter.h"
#include "media/jpeg/HuffmanTable.h"

namespace tavren::jpeg {

// The symbols of baseline entropy coding, for counting and for writing. A block comes as a
// mask of its non-zero zig-zag coefficients and the packed non-zero AC values (Quantizer), so
// both passes step from one non-zero coefficient to the next instead of looking at all 63.

// Bit length of |value|: the "size" category a value is coded under.
inline int SizeCategory(int value) {
    return std::bit_width(static_cast<unsigned>(value < 0 ? -value : value));
}

inline constexpr int kEndOfBlock = 0x00;
inline constexpr int kZeroRun16 = 0xF0;

struct SymbolCounts {
    std::array<HuffmanTable::Frequencies, 2> dc{};
    std::array<HuffmanTable::Frequencies, 2> ac{};

    void Add(const SymbolCounts& other) {
        for (int t = 0; t < 2; ++t) {
            for (int s = 0; s < 256; ++s) {
                dc[t][s] += other.dc[t][s];
                ac[t][s] += other.ac[t][s];
            }
        }
    }
};

// Counts the AC symbols of one block; returns the position after its values.
inline const std::int16_t* CountAc(const std::int16_t* values, std::uint64_t nonzero,
                                   HuffmanTable::Frequencies& ac) {
    nonzero &= ~std::uint64_t{1};
    int last = 0;
    while (nonzero != 0) {
        const int k = std::countr_zero(nonzero);
        int run = k - last - 1;
        while (run >= 16) {
            ++ac[kZeroRun16];
            run -= 16;
        }
        ++ac[(run << 4) | SizeCategory(*values++)];
        last = k;
        nonzero &= nonzero - 1;
    }
    if (last != 63) {
        ++ac[kEndOfBlock];
    }
    return values;
}

// A Huffman table laid out for writing: per symbol the code and its length.
struct EncodingTable {
    std::array<std::uint32_t, 256> code{};
    std::array<std::uint8_t, 256> length{};

    explicit EncodingTable(const HuffmanTable& table) {
        for (int s = 0; s < 256; ++s) {
            code[s] = table.Code(s);
            length[s] = table.Length(s);
        }
    }
};

// Value bits of a coefficient: the value itself when positive, value - 1 (in `size` bits) when
// negative, so that the leading bit tells the sign.
inline std::uint32_t ValueBits(int value, int size) {
    const int adjusted = value < 0 ? value - 1 : value;
    return static_cast<std::uint32_t>(adjusted) & ((1u << size) - 1);
}

template <typename Writer>
inline void WriteDc(Writer& out, const EncodingTable& table, int difference) {
    const int size = SizeCategory(difference);
    out.Put(table.code[size] << size | ValueBits(difference, size), table.length[size] + size);
}

// Writes the AC symbols of one block; returns the position after its values.
template <typename Writer>
inline const std::int16_t* WriteAc(Writer& out, const EncodingTable& table,
                                   const std::int16_t* values, std::uint64_t nonzero) {
    nonzero &= ~std::uint64_t{1};
    int last = 0;
    while (nonzero != 0) {
        const int k = std::countr_zero(nonzero);
        int run = k - last - 1;
        while (run >= 16) {
            out.Put(table.code[kZeroRun16], table.length[kZeroRun16]);
            run -= 16;
        }
        const int value = *values++;
        const int size = SizeCategory(value);
        const int symbol = (run << 4) | size;
        out.Put(table.code[symbol] << size | ValueBits(value, size), table.length[symbol] + size);
        last = k;
        nonzero &= nonzero - 1;
    }
    if (last != 63) {
        out.Put(table.code[kEndOfBlock], table.length[kEndOfBlock]);
    }
    return values;
}

}  // namespace tavren::jpeg
