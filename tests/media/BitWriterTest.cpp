#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "media/jpeg/BitWriter.h"

using tavren::jpeg::BitWriter;
using tavren::jpeg::UnstuffedBitWriter;

namespace {

// The same bits packed one at a time, for comparison.
std::vector<std::uint8_t> Reference(const std::vector<std::pair<std::uint32_t, int>>& puts) {
    std::vector<bool> bits;
    for (const auto& [value, count] : puts) {
        for (int i = count - 1; i >= 0; --i) {
            bits.push_back(value >> i & 1);
        }
    }
    while (bits.size() % 8 != 0) {
        bits.push_back(true);
    }
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i < bits.size(); i += 8) {
        int byte = 0;
        for (int j = 0; j < 8; ++j) {
            byte = byte << 1 | bits[i + j];
        }
        bytes.push_back(static_cast<std::uint8_t>(byte));
        if (byte == 0xFF) {
            bytes.push_back(0);
        }
    }
    return bytes;
}

std::vector<std::uint8_t> Written(const std::vector<std::pair<std::uint32_t, int>>& puts) {
    std::vector<std::uint8_t> buffer(puts.size() * 8 + 64);
    BitWriter writer(buffer.data());
    for (const auto& [value, count] : puts) {
        writer.Put(value, count);
    }
    buffer.resize(static_cast<std::size_t>(writer.Finish() - buffer.data()));
    return buffer;
}

}  // namespace

TEST(BitWriter, StuffsAfterEveryFFAndPadsWithOnes) {
    EXPECT_EQ(Written({{0xFF, 8}, {0x1, 1}}), (std::vector<std::uint8_t>{0xFF, 0x00, 0xFF, 0x00}));
    EXPECT_EQ(Written({{0x0, 3}}), (std::vector<std::uint8_t>{0x1F}));
    EXPECT_EQ(Written({}), (std::vector<std::uint8_t>{}));
    // A 0xFF that straddles two puts and a word boundary.
    std::vector<std::pair<std::uint32_t, int>> puts(15, {0, 4});
    puts.push_back({0xF, 4});
    puts.push_back({0xF, 4});
    puts.push_back({0x0, 4});
    EXPECT_EQ(Written(puts), Reference(puts));
}

TEST(BitWriter, MatchesABitByBitPackerOnRandomCodes) {
    std::mt19937 random(3);
    for (int trial = 0; trial < 50; ++trial) {
        std::vector<std::pair<std::uint32_t, int>> puts;
        const int count = static_cast<int>(random() % 400);
        for (int i = 0; i < count; ++i) {
            const int bits = 1 + static_cast<int>(random() % 27);
            // Many all-ones values so that stuffing happens often, at every alignment.
            const std::uint32_t value =
                random() % 3 == 0 ? (1u << bits) - 1 : random() & ((1u << bits) - 1);
            puts.emplace_back(value, bits);
        }
        ASSERT_EQ(Written(puts), Reference(puts)) << "trial " << trial;
    }
}

TEST(BitWriter, PiecesWrittenApartJoinIntoTheSameStream) {
    // A scan written in stripes on several threads must equal the one written in one go,
    // whatever bit position each stripe starts at.
    std::mt19937 random(8);
    for (int trial = 0; trial < 200; ++trial) {
        std::vector<std::pair<std::uint32_t, int>> puts;
        const int count = static_cast<int>(random() % 300);
        for (int i = 0; i < count; ++i) {
            const int bits = 1 + static_cast<int>(random() % 27);
            const std::uint32_t value =
                random() % 3 == 0 ? (1u << bits) - 1 : random() & ((1u << bits) - 1);
            puts.emplace_back(value, bits);
        }
        const std::size_t cut1 = puts.empty() ? 0 : random() % (puts.size() + 1);
        const std::size_t cut2 =
            cut1 + (puts.size() == cut1 ? 0 : random() % (puts.size() - cut1 + 1));

        std::vector<std::uint8_t> out(puts.size() * 8 + 64);
        std::vector<std::uint8_t> second(puts.size() * 8 + 64);
        std::vector<std::uint8_t> third(puts.size() * 8 + 64);
        BitWriter first(out.data());
        UnstuffedBitWriter middle(second.data());
        UnstuffedBitWriter last(third.data());
        for (std::size_t i = 0; i < puts.size(); ++i) {
            if (i < cut1) {
                first.Put(puts[i].first, puts[i].second);
            } else if (i < cut2) {
                middle.Put(puts[i].first, puts[i].second);
            } else {
                last.Put(puts[i].first, puts[i].second);
            }
        }
        first.Append(middle, second.data());
        first.Append(last, third.data());
        out.resize(static_cast<std::size_t>(first.Finish() - out.data()));
        ASSERT_EQ(out, Reference(puts)) << "trial " << trial << " cuts " << cut1 << "," << cut2;
    }
}
