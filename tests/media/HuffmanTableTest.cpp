#include <gtest/gtest.h>

#include <algorithm>

#include "media/jpeg/HuffmanTable.h"
#include "media/support/JpegInspector.h"
#include "media/support/TestHelpers.h"

using tavren::jpeg::HuffmanTable;
using tavren::test::JpegErrorText;

namespace {

// The optimal table for some counts must give exactly the counted symbols codes of 1..16 bits,
// and those codes must be the ones a decoder assigns from BITS and HUFFVAL (which makes them
// prefix-free and never all ones). HUFFVAL goes by length, and within a length by value unless
// lengths had to be cut to 16 bits. Returns the longest length.
int ExpectSoundTable(const HuffmanTable::Frequencies& frequencies, bool cut) {
    const HuffmanTable table = HuffmanTable::Optimal(frequencies);
    // Raises, failing the test, for codes that overflow or end up all ones.
    const auto codes = tavren::test::AssignHuffmanCodes(&table.Bits()[1], table.Values());
    for (int s = 0; s < 256; ++s) {
        EXPECT_EQ(frequencies[s] != 0, table.Length(s) != 0) << s;
    }
    int longest = 0;
    for (const auto& [lengthAndCode, symbol] : codes) {
        EXPECT_EQ(table.Length(symbol), lengthAndCode.first) << symbol;
        EXPECT_EQ(table.Code(symbol), lengthAndCode.second) << symbol;
        longest = std::max(longest, lengthAndCode.first);
    }
    EXPECT_EQ(codes.size(), static_cast<std::size_t>(std::count_if(
                                frequencies.begin(), frequencies.end(), [](auto f) { return f; })));
    const std::vector<std::uint8_t>& values = table.Values();
    for (std::size_t i = 1; i < values.size(); ++i) {
        EXPECT_TRUE(cut || table.Length(values[i]) != table.Length(values[i - 1]) ||
                    values[i] > values[i - 1])
            << int(values[i]);
    }
    return longest;
}

}  // namespace

TEST(HuffmanTable, OptimalTablesAreSoundFavourFrequentSymbolsAndStopAtSixteenBits) {
    HuffmanTable::Frequencies frequencies{};
    frequencies[0x00] = 1000;
    frequencies[0x01] = 400;
    frequencies[0x11] = 100;
    frequencies[0x23] = 10;
    frequencies[0xF0] = 1;
    ExpectSoundTable(frequencies, false);
    const HuffmanTable table = HuffmanTable::Optimal(frequencies);
    EXPECT_EQ(table.Length(0x00), 1);
    EXPECT_LE(table.Length(0x01), table.Length(0x11));
    EXPECT_LE(table.Length(0x11), table.Length(0x23));

    // A flat picture has only end-of-block, which still needs a (one-bit, not all-ones) code.
    HuffmanTable::Frequencies single{};
    single[0x00] = 5000;
    EXPECT_EQ(ExpectSoundTable(single, false), 1);

    // Fibonacci counts make the unrestricted tree as deep as there are symbols.
    HuffmanTable::Frequencies fibonacci{};
    fibonacci[0] = fibonacci[1] = 1;
    for (int s = 2; s < 40; ++s) {
        fibonacci[s] = fibonacci[s - 1] + fibonacci[s - 2];
    }
    EXPECT_EQ(ExpectSoundTable(fibonacci, true), 16);

    // All 256 symbols equally common: eight bits would need the all-ones code, so some get nine.
    HuffmanTable::Frequencies even{};
    even.fill(7);
    EXPECT_EQ(ExpectSoundTable(even, false), 9);
}

TEST(HuffmanTable, InconsistentCountsAreBadHuffmanTables) {
    auto errorOf = [](std::array<std::uint8_t, 17> bits, std::vector<std::uint8_t> values) {
        return JpegErrorText([&] { HuffmanTable::FromBitsAndValues(bits, values); });
    };
    EXPECT_EQ(errorOf({0, 2}, {1, 2}), "Bad Huffman Table");  // one of two 1-bit codes is all ones
    EXPECT_EQ(errorOf({0, 1, 4}, {1, 2, 3, 4, 5}), "Bad Huffman Table");  // too many 2-bit codes
    EXPECT_EQ(errorOf({0, 1, 1}, {1}), "Bad Huffman Table");     // counts and values disagree
    EXPECT_EQ(errorOf({0, 1, 1}, {3, 3}), "Bad Huffman Table");  // a symbol twice

    const HuffmanTable good = HuffmanTable::FromBitsAndValues({0, 1, 1}, {7, 9});
    EXPECT_EQ(good.Code(7), 0b0);
    EXPECT_EQ(good.Code(9), 0b10);
    EXPECT_EQ(good.Length(9), 2);
}
