#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

#include "holdem/Hand.h"
#include "holdem/HandValue.h"

namespace tavren::holdem {

// Seven-card evaluation by table lookup. Without a flush, the two rank-key sums of a Hand select
// a row and a column of a dense table of every rank pattern of up to seven cards (76,155 of
// them); with five or more cards of one suit, that suit's 13-bit rank mask indexes a flush table.
// Either way one evaluation is a handful of additions and at most three loads, no loop, no sort.
//
// The tables are built once per process on the first construction (a few milliseconds) and
// shared by all evaluators; an evaluator itself is one pointer and cheap to copy.
class HandEvaluator {
  public:
    // All the tables in one block at fixed offsets, so that an evaluation addresses every one of
    // them from a single register: a loop over many hands keeps its registers for the cards.
    struct Tables {
        static constexpr std::size_t kLowKeys = hand_layout::kLowHalfMask + 1;
        static constexpr std::size_t kHighKeys = hand_layout::kHighHalfMask + 1;
        static constexpr std::size_t kFlushMasks = std::size_t{1} << 13;
        // Every rank pattern of up to seven cards has its cell, plus room for the largest row
        // start and column of out-of-contract keys; the builder checks the count.
        static constexpr std::size_t kValueCells = 79335;

        std::uint32_t lowRowStart[kLowKeys];
        std::uint16_t highColumn[kHighKeys];
        std::uint32_t flush[kFlushMasks];
        std::uint32_t values[kValueCells];
    };

    HandEvaluator();

    // Value of the best hand the cards make (any 0..7 distinct cards). Precondition: a Hand made
    // of at most seven distinct cards; anything else gives a meaningless but safe value.
    HandValue evaluate(const Hand& hand) const {
        if (hasFlush(hand.key)) [[unlikely]] {
            return flushValue(hand.key, hand.cards);
        }
        return rankPatternValue(hand.key);
    }

    // Cards given as numbers 1..52 (0 = not shown). Precondition: numbers 0..52, the nonzero
    // ones distinct, at most seven of them.
    template <typename CardNumber, std::size_t Extent>
    HandValue evaluate(std::span<const CardNumber, Extent> cards) const {
        if constexpr (Extent != std::dynamic_extent) {
            // A fixed count unrolls into straight-line additions, which keeps many deals in
            // flight at once. The suit lanes are summed only when a flush needs them.
            const std::uint64_t key = sumOf(kCardKeys, cards, std::make_index_sequence<Extent>{});
            if (hasFlush(key)) [[unlikely]] {
                return flushValue(key, sumOf(kCardBits, cards, std::make_index_sequence<Extent>{}));
            }
            return rankPatternValue(key);
        } else {
            Hand hand;
            for (CardNumber card : cards) {
                hand += HandOf(static_cast<int>(card));
            }
            return evaluate(hand);
        }
    }

    // Bytes taken by the shared tables.
    static std::size_t tableBytes();

  private:
    static bool hasFlush(std::uint64_t key) { return (key & hand_layout::kFlushBits) != 0; }

    HandValue rankPatternValue(std::uint64_t key) const {
        // The two rank sums fill the key's low 32 bits: each comes out in range, even from a
        // broken Hand, without a mask.
        const auto sums = static_cast<std::uint32_t>(key);
        const std::uint32_t low = sums >> hand_layout::kLowHalfShift;
        const std::uint32_t high = sums & hand_layout::kHighHalfMask;
        return HandValue(tables_->values[tables_->lowRowStart[low] + tables_->highColumn[high]]);
    }

    HandValue flushValue(std::uint64_t key, std::uint64_t cards) const {
        // The flag of suit s is bit 37 + 8s; that suit's cards are bits 13s on. (Taken from a
        // shifted key, so that the test above stays a plain test.)
        const auto flagAt = static_cast<unsigned>(
            std::countr_zero((key >> hand_layout::kFirstFlushBit) & 0x01010101));
        const unsigned laneShift = (flagAt >> 3) * kCardsPerSuit;
        return HandValue(tables_->flush[(cards >> laneShift) & 0x1FFF]);
    }

    template <typename CardNumber, std::size_t Extent, std::size_t... Index>
    static std::uint64_t sumOf(const std::array<std::uint64_t, kLastCard + 1>& table,
                               std::span<const CardNumber, Extent> cards,
                               std::index_sequence<Index...>) {
        return (std::uint64_t{0} + ... + table[static_cast<std::size_t>(cards[Index])]);
    }

    const Tables* tables_;
};

}  // namespace tavren::holdem
