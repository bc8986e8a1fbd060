#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "media/JpegError.h"
#include "media/jpeg/HuffmanTable.h"

using tavren::JpegError;
using tavren::jpeg::HuffmanTable;

namespace {

// Checks what any decoder relies on: lengths 1..16, codes that are no one's prefix, no
// all-ones code, every counted symbol present. Unless lengths had to be cut to 16 bits,
// HUFFVAL also lists symbols of one length by value.
void ExpectSoundTable(const HuffmanTable& table, const HuffmanTable::Frequencies& frequencies,
                      bool cut = false) {
    std::set<int> symbols;
    int previousLength = 0;
    int previousSymbol = -1;
    for (std::uint8_t symbol : table.Values()) {
        EXPECT_TRUE(symbols.insert(symbol).second) << "symbol twice: " << int(symbol);
        const int length = table.Length(symbol);
        ASSERT_GE(length, 1);
        ASSERT_LE(length, 16);
        EXPECT_GE(length, previousLength);
        if (!cut && length == previousLength) {
            EXPECT_GT(symbol, previousSymbol);
        }
        EXPECT_NE(table.Code(symbol), (1u << length) - 1) << "all-ones code";
        previousLength = length;
        previousSymbol = symbol;
    }
    for (int s = 0; s < 256; ++s) {
        EXPECT_EQ(frequencies[s] != 0, symbols.count(s) == 1) << s;
    }
    for (int a : symbols) {
        for (int b : symbols) {
            if (a == b || table.Length(a) > table.Length(b)) {
                continue;
            }
            const int shift = table.Length(b) - table.Length(a);
            EXPECT_NE(table.Code(b) >> shift, table.Code(a)) << a << " is a prefix of " << b;
        }
    }
}

}  // namespace

TEST(HuffmanTable, FrequentSymbolsGetShorterCodes) {
    HuffmanTable::Frequencies frequencies{};
    frequencies[0x00] = 1000;
    frequencies[0x01] = 400;
    frequencies[0x11] = 100;
    frequencies[0x23] = 10;
    frequencies[0xF0] = 1;
    const HuffmanTable table = HuffmanTable::Optimal(frequencies);
    ExpectSoundTable(table, frequencies);
    EXPECT_EQ(table.Length(0x00), 1);
    EXPECT_LE(table.Length(0x01), table.Length(0x11));
    EXPECT_LE(table.Length(0x11), table.Length(0x23));
    // The reserved symbol is gone again: five codes, not six.
    EXPECT_EQ(table.Values().size(), 5u);
}

TEST(HuffmanTable, OneSymbolStillGetsAOneBitCode) {
    HuffmanTable::Frequencies frequencies{};
    frequencies[0x00] = 5000;  // a flat picture: only end-of-block
    const HuffmanTable table = HuffmanTable::Optimal(frequencies);
    ExpectSoundTable(table, frequencies);
    EXPECT_EQ(table.Length(0x00), 1);
    EXPECT_EQ(table.Code(0x00), 0);
}

TEST(HuffmanTable, SkewedCountsAreLimitedToSixteenBits) {
    // Fibonacci counts make the unrestricted tree as deep as there are symbols.
    HuffmanTable::Frequencies frequencies{};
    std::uint64_t a = 1;
    std::uint64_t b = 1;
    for (int s = 0; s < 40; ++s) {
        frequencies[s] = a;
        const std::uint64_t next = a + b;
        a = b;
        b = next;
    }
    const HuffmanTable table = HuffmanTable::Optimal(frequencies);
    ExpectSoundTable(table, frequencies, true);
    int longest = 0;
    for (int s = 0; s < 40; ++s) {
        longest = std::max<int>(longest, table.Length(s));
    }
    EXPECT_EQ(longest, 16);

    // All 256 symbols equally common: eight bits would need the all-ones code, so some get nine.
    frequencies.fill(7);
    ExpectSoundTable(HuffmanTable::Optimal(frequencies), frequencies);
}

TEST(HuffmanTable, InconsistentCountsAreBadHuffmanTables) {
    auto expectBad = [](std::array<std::uint8_t, 17> bits, std::vector<std::uint8_t> values) {
        try {
            HuffmanTable::FromBitsAndValues(bits, values);
            ADD_FAILURE() << "accepted";
        } catch (const JpegError& e) {
            EXPECT_STREQ(e.what(), "Bad Huffman Table");
            EXPECT_EQ(e.Number(), 1);
        }
    };
    expectBad({0, 2}, {1, 2});              // two 1-bit codes: one of them is all ones
    expectBad({0, 1, 4}, {1, 2, 3, 4, 5});  // more 2-bit codes than fit
    expectBad({0, 1, 1}, {1});              // counts and values disagree
    expectBad({0, 1, 1}, {3, 3});           // a symbol twice

    const HuffmanTable good = HuffmanTable::FromBitsAndValues({0, 1, 1}, {7, 9});
    EXPECT_EQ(good.Code(7), 0b0);
    EXPECT_EQ(good.Code(9), 0b10);
    EXPECT_EQ(good.Length(9), 2);
}
