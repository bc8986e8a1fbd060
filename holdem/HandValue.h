#pragma once

#include <compare>
#include <cstdint>
#include <initializer_list>

namespace tavren::holdem {

// Poker hand categories, worst to best; the numbers are part of the hand value.
enum class HandCategory : std::uint8_t {
    None = 0,  // no card known
    HighCard = 1,
    OnePair = 2,
    TwoPairs = 3,
    ThreeOfAKind = 4,
    Straight = 5,
    Flush = 6,
    FullHouse = 7,
    FourOfAKind = 8,
    StraightFlush = 9,
};

// The comparable value of a hand: a higher value wins, equal values split the pot. Laid out as
// category << 20 followed by up to five significant ranks (2..14, ace high), four bits each,
// most significant first: the quads rank then the kicker, the trips rank then the pair rank, the
// top card of a straight (5 for ace-to-five), the five flush cards, the two pair ranks then the
// kicker, and so on. A rank the known cards do not supply yet (fewer than five cards) is 0, so a
// partial hand compares below the same hand with its kickers filled in.
class HandValue {
  public:
    static constexpr int kRankSlots = 5;

    constexpr HandValue() = default;
    constexpr explicit HandValue(std::uint32_t bits) : bits_(bits) {}

    static constexpr HandValue make(HandCategory category, std::initializer_list<int> ranks) {
        std::uint32_t bits = static_cast<std::uint32_t>(category);
        int filled = 0;
        for (int rank : ranks) {
            if (filled == kRankSlots) {
                break;
            }
            bits = (bits << 4) | (static_cast<std::uint32_t>(rank) & 0xFu);
            ++filled;
        }
        for (; filled < kRankSlots; ++filled) {
            bits <<= 4;
        }
        return HandValue(bits);
    }

    constexpr std::uint32_t bits() const { return bits_; }
    constexpr HandCategory category() const { return static_cast<HandCategory>(bits_ >> 20); }
    // The index-th significant rank (0 = most significant), 2..14, or 0 when not known.
    constexpr int rank(int index) const {
        return static_cast<int>((bits_ >> (16 - 4 * index)) & 0xFu);
    }

    friend constexpr auto operator<=>(HandValue, HandValue) = default;

  private:
    std::uint32_t bits_ = 0;
};

}  // namespace tavren::holdem
