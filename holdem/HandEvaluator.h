#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

#include "holdem/Hand.h"
#include "holdem/HandValue.h"

namespace tavren::holdem {

// Seven-card evaluation by table lookup. Without a flush, the two rank-key sums of a Hand select
// a row and a column of a dense table of every rank pattern of up to seven cards (76,155 of
// them); with five or more cards of one suit, that suit's 13-bit rank mask indexes a flush table.
// Either way one evaluation is a handful of additions and at most three loads, no loop, no sort.
//
// The tables are built once per process on the first construction (a few milliseconds) and
// shared by all evaluators; an evaluator itself is four pointers and cheap to copy.
class HandEvaluator {
  public:
    HandEvaluator();

    // Value of the best hand the cards make (any 0..7 distinct cards). Precondition: a Hand made
    // of at most seven distinct cards; anything else gives a meaningless but safe value.
    HandValue evaluate(const Hand& hand) const {
        const std::uint64_t suitCounters = hand.key + kFlushBias;
        if ((suitCounters & kFlushBits) != 0) [[unlikely]] {
            return evaluateFlush(suitCounters, hand.suitRanks);
        }
        const std::uint64_t low = hand.key & hand_layout::kHalfMask;
        const std::uint64_t high =
            (hand.key >> hand_layout::kHighHalfShift) & hand_layout::kHalfMask;
        return HandValue(values_[lowRowStart_[low] + highColumn_[high]]);
    }

    // Cards given as numbers 1..52 (0 = not shown). Precondition: numbers 0..52, the nonzero
    // ones distinct, at most seven of them.
    template <typename CardNumber, std::size_t Extent>
    HandValue evaluate(std::span<const CardNumber, Extent> cards) const {
        Hand hand;
        for (CardNumber card : cards) {
            hand += kCardHands[static_cast<std::size_t>(card)];
        }
        return evaluate(hand);
    }

    // Bytes taken by the shared tables.
    static std::size_t tableBytes();

  private:
    // Each suit counter starts at 3, so it reaches bit 3 of its nibble exactly at five cards.
    static constexpr std::uint64_t kFlushBias = std::uint64_t{0x3333}
                                                << hand_layout::kSuitCounterShift;
    static constexpr std::uint64_t kFlushBits = std::uint64_t{0x8888}
                                                << hand_layout::kSuitCounterShift;

    HandValue evaluateFlush(std::uint64_t suitCounters, std::uint64_t suitRanks) const {
        const int flagBit = std::countr_zero(suitCounters & kFlushBits);
        const int suit = (flagBit - hand_layout::kSuitCounterShift) / 4;
        const std::uint64_t mask = (suitRanks >> (hand_layout::kSuitLaneBits * suit)) & 0x1FFF;
        return HandValue(flush_[mask]);
    }

    const std::uint32_t* values_;
    const std::uint32_t* lowRowStart_;
    const std::uint16_t* highColumn_;
    const std::uint32_t* flush_;
};

}  // namespace tavren::holdem
