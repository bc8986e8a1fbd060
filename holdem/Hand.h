#pragma once

#include <array>
#include <cstdint>

#include "holdem/Cards.h"

namespace tavren::holdem {

// A set of cards packed so that adding a card is two additions and the evaluator needs no loop:
//
//   key bits  0..15  sum of the rank keys of the ranks eight..ace
//   key bits 18..31  sum of the rank keys of the ranks two..seven
//   key bits 32..63  one byte per suit (spades lowest), 7 for each card of the suit
//   cards            bit n - 1 set for card number n: a 13-bit lane per suit, ace first
//
// The rank keys are chosen so that no two different rank patterns of up to seven cards share a
// sum within either half, so the two sums name the pattern exactly. Where they lie lets the
// evaluator take each out of the key's low 32 bits with one instruction and no mask: the
// 16-bit sum is that word's low half, the 14-bit one what a shift by 18 leaves. A suit byte holds 7
// x the suit's cards: 28 for four cards, 35 to 49 for five to seven, so its bit 5 is set exactly
// when the suit makes a flush and one test of four bits finds any, with nothing to add first and
// nothing to carry into the next byte. A card's bit is a shift of its number rather than a
// table entry: only a flush needs it, and a shift the compiler can leave to that rare path (or
// fold into a loop over cards) costs nothing, where a load would be made for every card.
// Distinct cards never share a bit, which makes addition the same as union: hole cards plus
// board is one addition.
// Only sets of at most seven distinct cards are meaningful; validate untrusted input first.
struct Hand {
    std::uint64_t key = 0;
    std::uint64_t cards = 0;

    constexpr Hand& operator+=(const Hand& other) {
        key += other.key;
        cards += other.cards;
        return *this;
    }
    friend constexpr Hand operator+(Hand left, const Hand& right) { return left += right; }
    friend constexpr bool operator==(const Hand&, const Hand&) = default;
};

namespace hand_layout {

inline constexpr int kLowRanks = 6;  // two .. seven live in the low half
inline constexpr int kLowHalfShift = 18;
inline constexpr int kSuitCountShift = 32;
inline constexpr int kSuitCountBits = 8;
inline constexpr std::uint64_t kSuitCountStep = 7;
// Bit 5 of each suit byte: 32 <= 7 x cards < 64 means five to seven cards of that suit.
inline constexpr std::uint64_t kFlushBits = std::uint64_t{0x20202020} << kSuitCountShift;
inline constexpr int kFirstFlushBit = kSuitCountShift + 5;
// Every low-half sum of up to seven cards fits in 14 bits, every high-half sum in 16.
inline constexpr std::uint64_t kLowHalfMask = 0x3FFF;
inline constexpr std::uint64_t kHighHalfMask = 0xFFFF;

// Rank keys for either half: each is the smallest number above the one before that keeps the sums
// of every pattern of up to seven cards, at most four of a rank, all different. The evaluator
// checks this again when it builds its tables.
inline constexpr std::array<std::uint32_t, 7> kRankKeys = {1, 5, 24, 112, 521, 2247, 9244};

constexpr std::uint64_t RankKey(int rankIndex) {
    return rankIndex < kLowRanks
               ? std::uint64_t{kRankKeys[static_cast<std::size_t>(rankIndex)]} << kLowHalfShift
               : kRankKeys[static_cast<std::size_t>(rankIndex - kLowRanks)];
}

constexpr Hand HandOfCard(int card) {
    if (!IsCardNumber(card)) {
        return {};
    }
    const int suit = SuitIndexOfCard(card);
    const int rankIndex = HighRankOfCard(card) - 2;
    return {RankKey(rankIndex) + (kSuitCountStep << (kSuitCountShift + kSuitCountBits * suit)),
            std::uint64_t{1} << (card - 1)};
}

template <typename Field>
constexpr std::array<std::uint64_t, kLastCard + 1> MakeCardTable(Field field) {
    std::array<std::uint64_t, kLastCard + 1> table{};
    for (int card = kFirstCard; card <= kLastCard; ++card) {
        table[static_cast<std::size_t>(card)] = field(HandOfCard(card));
    }
    return table;
}

}  // namespace hand_layout

// The two halves of each card's Hand, indexed by card number; entry 0 (no card, face down) adds
// nothing. Kept as two arrays of eight-byte words so that a card lookup is a single scaled load.
inline constexpr std::array<std::uint64_t, kLastCard + 1> kCardKeys =
    hand_layout::MakeCardTable([](const Hand& hand) { return hand.key; });
inline constexpr std::array<std::uint64_t, kLastCard + 1> kCardBits =
    hand_layout::MakeCardTable([](const Hand& hand) { return hand.cards; });

constexpr Hand HandOf(int card) {
    if (!IsCardNumber(card)) {
        return {};
    }
    const std::size_t at = static_cast<std::size_t>(card);
    return {kCardKeys[at], std::uint64_t{1} << (card - 1)};
}

}  // namespace tavren::holdem
