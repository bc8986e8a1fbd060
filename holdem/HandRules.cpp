#include "holdem/HandRules.h"

#include <initializer_list>

namespace tavren::holdem {

namespace {

constexpr int kRanks = 13;
constexpr int kAceIndex = 12;
constexpr int kCardsInHand = 5;

constexpr int RankOfIndex(int index) {
    return index + 2;
}

// Builds the value from the ranks that define the category, then fills the remaining places of
// the five-card hand with the highest other ranks (kickers), one card each.
HandValue WithKickers(HandCategory category, std::initializer_list<int> defining, int cardsUsed,
                      int cardsKnown, const RankCounts& counts) {
    std::array<int, HandValue::kRankSlots> ranks{};
    std::size_t filled = 0;
    for (int rank : defining) {
        ranks[filled++] = rank;
    }
    const std::size_t definingCount = filled;
    const int limit = cardsKnown < kCardsInHand ? cardsKnown : kCardsInHand;
    for (int index = kAceIndex; index >= 0 && cardsUsed < limit; --index) {
        if (counts[static_cast<std::size_t>(index)] == 0) {
            continue;
        }
        bool alreadyUsed = false;
        for (std::size_t i = 0; i < definingCount; ++i) {
            alreadyUsed = alreadyUsed || ranks[i] == RankOfIndex(index);
        }
        if (!alreadyUsed) {
            ranks[filled++] = RankOfIndex(index);
            ++cardsUsed;
        }
    }
    std::uint32_t bits = static_cast<std::uint32_t>(category);
    for (int rank : ranks) {
        bits = (bits << 4) | static_cast<std::uint32_t>(rank);
    }
    return HandValue(bits);
}

// Highest rank index with at least `minimum` cards, skipping `except`; -1 when none.
int HighestWithCount(const RankCounts& counts, int minimum, int except = -1) {
    for (int index = kAceIndex; index >= 0; --index) {
        if (index != except && counts[static_cast<std::size_t>(index)] >= minimum) {
            return index;
        }
    }
    return -1;
}

}  // namespace

int TopOfStraight(std::uint32_t rankMask) {
    for (int top = kAceIndex; top >= 4; --top) {
        const std::uint32_t run = 0x1Fu << (top - 4);
        if ((rankMask & run) == run) {
            return RankOfIndex(top);
        }
    }
    // The ace plays low under two, three, four, five.
    const std::uint32_t wheel = (1u << kAceIndex) | 0xFu;
    return (rankMask & wheel) == wheel ? 5 : 0;
}

HandValue ValueOfRanks(const RankCounts& counts) {
    int cardsKnown = 0;
    std::uint32_t present = 0;
    for (int index = 0; index < kRanks; ++index) {
        cardsKnown += counts[static_cast<std::size_t>(index)];
        if (counts[static_cast<std::size_t>(index)] > 0) {
            present |= 1u << index;
        }
    }
    if (cardsKnown == 0) {
        return HandValue();
    }

    const int quads = HighestWithCount(counts, 4);
    if (quads >= 0) {
        return WithKickers(HandCategory::FourOfAKind, {RankOfIndex(quads)}, 4, cardsKnown, counts);
    }
    const int trips = HighestWithCount(counts, 3);
    const int pairWithTrips = trips >= 0 ? HighestWithCount(counts, 2, trips) : -1;
    if (pairWithTrips >= 0) {
        return HandValue::make(HandCategory::FullHouse,
                               {RankOfIndex(trips), RankOfIndex(pairWithTrips)});
    }
    if (const int top = TopOfStraight(present); top != 0) {
        return HandValue::make(HandCategory::Straight, {top});
    }
    if (trips >= 0) {
        return WithKickers(HandCategory::ThreeOfAKind, {RankOfIndex(trips)}, 3, cardsKnown, counts);
    }
    const int highPair = HighestWithCount(counts, 2);
    const int lowPair = highPair >= 0 ? HighestWithCount(counts, 2, highPair) : -1;
    if (lowPair >= 0) {
        // A third pair can still supply the kicker, which WithKickers takes as any unused rank.
        return WithKickers(HandCategory::TwoPairs, {RankOfIndex(highPair), RankOfIndex(lowPair)}, 4,
                           cardsKnown, counts);
    }
    if (highPair >= 0) {
        return WithKickers(HandCategory::OnePair, {RankOfIndex(highPair)}, 2, cardsKnown, counts);
    }
    return WithKickers(HandCategory::HighCard, {}, 0, cardsKnown, counts);
}

HandValue ValueOfFlush(std::uint32_t rankMask) {
    if (const int top = TopOfStraight(rankMask); top != 0) {
        return HandValue::make(HandCategory::StraightFlush, {top});
    }
    std::uint32_t bits = static_cast<std::uint32_t>(HandCategory::Flush);
    int taken = 0;
    for (int index = kAceIndex; index >= 0 && taken < kCardsInHand; --index) {
        if ((rankMask & (1u << index)) != 0) {
            bits = (bits << 4) | static_cast<std::uint32_t>(RankOfIndex(index));
            ++taken;
        }
    }
    for (; taken < kCardsInHand; ++taken) {
        bits <<= 4;
    }
    return HandValue(bits);
}

}  // namespace tavren::holdem
