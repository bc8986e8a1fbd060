#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "media/jpeg/BitWriter.h"

using tavren::jpeg::BitWriter;
using tavren::jpeg::UnstuffedBitWriter;

namespace {

using Puts = std::vector<std::pair<std::uint32_t, int>>;  // value, bit count

// The same bits packed one at a time: most significant first, one-bits padding the last byte,
// a zero byte after every 0xFF.
std::vector<std::uint8_t> Reference(const Puts& puts) {
    std::vector<bool> bits;
    for (const auto& [value, count] : puts) {
        for (int i = count - 1; i >= 0; --i) {
            bits.push_back(value >> i & 1);
        }
    }
    bits.resize((bits.size() + 7) / 8 * 8, true);
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

// The puts written in three stripes, the later two on unstuffed writers appended to the first,
// as the encoder's threads write a scan.
std::vector<std::uint8_t> Written(const Puts& puts, std::size_t cut1, std::size_t cut2) {
    std::vector<std::vector<std::uint8_t>> buffers(3,
                                                   std::vector<std::uint8_t>(8 * puts.size() + 64));
    BitWriter first(buffers[0].data());
    UnstuffedBitWriter later[] = {UnstuffedBitWriter(buffers[1].data()),
                                  UnstuffedBitWriter(buffers[2].data())};
    for (std::size_t i = 0; i < puts.size(); ++i) {
        if (i < cut1) {
            first.Put(puts[i].first, puts[i].second);
        } else {
            later[i < cut2 ? 0 : 1].Put(puts[i].first, puts[i].second);
        }
    }
    first.Append(later[0], buffers[1].data());
    first.Append(later[1], buffers[2].data());
    buffers[0].resize(static_cast<std::size_t>(first.Finish() - buffers[0].data()));
    return buffers[0];
}

}  // namespace

TEST(BitWriter, StuffsAfterEveryFFAndPadsWithOnes) {
    EXPECT_EQ(Written({{0xFF, 8}, {0x1, 1}}, 2, 2),
              (std::vector<std::uint8_t>{0xFF, 0x00, 0xFF, 0x00}));
    EXPECT_EQ(Written({{0x0, 3}}, 1, 1), (std::vector<std::uint8_t>{0x1F}));
    EXPECT_EQ(Written({}, 0, 0), (std::vector<std::uint8_t>{}));
}

TEST(BitWriter, MatchesABitByBitPackerWhereverTheStripesAreCut) {
    std::mt19937 random(3);
    for (int trial = 0; trial < 250; ++trial) {
        Puts puts(random() % 400);
        for (auto& [value, count] : puts) {
            count = 1 + static_cast<int>(random() % 27);
            // Many all-ones values so that stuffing happens often, at every alignment.
            value = random() % 3 == 0 ? (1u << count) - 1 : random() & ((1u << count) - 1);
        }
        // The first trials are written in one piece.
        const std::size_t cut1 = trial < 50 ? puts.size() : random() % (puts.size() + 1);
        const std::size_t cut2 = cut1 + random() % (puts.size() - cut1 + 1);
        ASSERT_EQ(Written(puts, cut1, cut2), Reference(puts))
            << "trial " << trial << " cuts " << cut1 << "," << cut2;
    }
}
