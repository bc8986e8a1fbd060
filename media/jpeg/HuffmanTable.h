#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace tavren::jpeg {

// A Huffman table as a JPEG file carries it: BITS (how many codes of each length 1..16) and
// HUFFVAL (the symbols in code order), plus the code and length per symbol derived from them.
class HuffmanTable {
  public:
    // Symbol counts of one image, one slot per symbol value.
    using Frequencies = std::array<std::uint64_t, 256>;

    HuffmanTable() = default;

    // Builds the table for the given counts by the procedure of the JPEG standard (Annex K.2):
    // a reserved symbol of count 1 keeps any code from being all ones, the two rarest entries are
    // merged until one is left, lengths over 16 bits are folded back, and HUFFVAL lists the
    // symbols by code length, then by value.
    static HuffmanTable Optimal(const Frequencies& frequencies);

    // Takes BITS (index 1..16 used) and HUFFVAL as read from a file and derives the codes.
    // Raises "Bad Huffman Table" when the counts are impossible or the codes overflow.
    static HuffmanTable FromBitsAndValues(const std::array<std::uint8_t, 17>& bits,
                                          const std::vector<std::uint8_t>& values);

    const std::array<std::uint8_t, 17>& Bits() const { return bits_; }
    const std::vector<std::uint8_t>& Values() const { return values_; }

    // Code and length of a symbol; length 0 means the symbol has no code.
    std::uint16_t Code(int symbol) const { return codes_[symbol]; }
    std::uint8_t Length(int symbol) const { return lengths_[symbol]; }

  private:
    void DeriveCodes();

    std::array<std::uint8_t, 17> bits_{};
    std::vector<std::uint8_t> values_;
    std::array<std::uint16_t, 256> codes_{};
    std::array<std::uint8_t, 256> lengths_{};
};

}  // namespace tavren::jpeg
