#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <numeric>
#include <random>
#include <vector>

#include "holdem/HandEvaluator.h"
#include "holdem/SimpleHandRanker.h"

namespace tavren::holdem {
namespace {

constexpr std::size_t kCategories = 10;

// Counts of hands and of distinct values, per category, over every hand enumerated.
struct Census {
    std::array<std::uint64_t, kCategories> hands{};
    std::array<std::uint64_t, kCategories> distinctValues{};
    std::vector<bool> seen = std::vector<bool>(std::size_t{1} << 24, false);

    void add(HandValue value) {
        const std::size_t category = static_cast<std::size_t>(value.category());
        ASSERT_LT(category, kCategories);
        ++hands[category];
        if (!seen[value.bits()]) {
            seen[value.bits()] = true;
            ++distinctValues[category];
        }
    }
    std::uint64_t totalDistinct() const {
        return std::accumulate(distinctValues.begin(), distinctValues.end(), std::uint64_t{0});
    }
};

// Indexed by HandCategory: none, high card, pair, two pairs, trips, straight, flush, full house,
// quads, straight flush. These are the published counts for a 52-card deck.
TEST(HandEvaluator, EverySevenCardHandFallsInItsPublishedCategoryCount) {
    const HandEvaluator evaluator;
    Census census;
    for (int a = 1; a <= 46; ++a) {
        const Hand ha = HandOf(a);
        for (int b = a + 1; b <= 47; ++b) {
            const Hand hb = ha + HandOf(b);
            for (int c = b + 1; c <= 48; ++c) {
                const Hand hc = hb + HandOf(c);
                for (int d = c + 1; d <= 49; ++d) {
                    const Hand hd = hc + HandOf(d);
                    for (int e = d + 1; e <= 50; ++e) {
                        const Hand he = hd + HandOf(e);
                        for (int f = e + 1; f <= 51; ++f) {
                            const Hand hf = he + HandOf(f);
                            for (int g = f + 1; g <= 52; ++g) {
                                census.add(evaluator.evaluate(hf + HandOf(g)));
                            }
                        }
                    }
                }
            }
        }
    }
    const std::array<std::uint64_t, kCategories> hands = {
        0,         23'294'460, 58'627'800, 31'433'400, 6'461'620,
        6'180'020, 4'047'644,  3'473'184,  224'848,    41'584};
    const std::array<std::uint64_t, kCategories> distinct = {0,  407,  1470, 763, 575,
                                                             10, 1277, 156,  156, 10};
    EXPECT_EQ(census.hands, hands);
    EXPECT_EQ(census.distinctValues, distinct);
    EXPECT_EQ(census.totalDistinct(), 4824u);
}

TEST(HandEvaluator, EveryFiveCardHandMatchesThePlainRanker) {
    const HandEvaluator evaluator;
    Census census;
    std::uint64_t mismatches = 0;
    std::array<int, 5> cards{};
    for (cards[0] = 1; cards[0] <= 48; ++cards[0]) {
        for (cards[1] = cards[0] + 1; cards[1] <= 49; ++cards[1]) {
            for (cards[2] = cards[1] + 1; cards[2] <= 50; ++cards[2]) {
                for (cards[3] = cards[2] + 1; cards[3] <= 51; ++cards[3]) {
                    for (cards[4] = cards[3] + 1; cards[4] <= 52; ++cards[4]) {
                        const HandValue value = evaluator.evaluate(std::span<const int, 5>(cards));
                        census.add(value);
                        if (value.bits() != test::RankFiveCards(cards) && ++mismatches < 5) {
                            ADD_FAILURE() << cards[0] << ' ' << cards[1] << ' ' << cards[2] << ' '
                                          << cards[3] << ' ' << cards[4];
                        }
                    }
                }
            }
        }
    }
    EXPECT_EQ(mismatches, 0u);
    const std::array<std::uint64_t, kCategories> hands = {
        0, 1'302'540, 1'098'240, 123'552, 54'912, 10'200, 5'108, 3'744, 624, 40};
    const std::array<std::uint64_t, kCategories> distinct = {0,  1277, 2860, 858, 858,
                                                             10, 1277, 156,  156, 10};
    EXPECT_EQ(census.hands, hands);
    EXPECT_EQ(census.distinctValues, distinct);
    EXPECT_EQ(census.totalDistinct(), 7462u);
}

// Random deals checked against the best of every five-card subset, both as one set of seven
// cards (counted and unrolled) and as hole cards plus a board added together, as a table will.
TEST(HandEvaluator, RandomDealsMatchTheBestOfEveryFiveCardSubset) {
    const HandEvaluator evaluator;
    std::mt19937_64 random(20240611);
    std::array<int, 52> deck{};
    std::iota(deck.begin(), deck.end(), 1);
    int mismatches = 0;
    for (int deal = 0; deal < 1'000'000 && mismatches < 5; ++deal) {
        // A partial shuffle is enough: only the first seven cards are used.
        for (std::size_t i = 0; i < 7; ++i) {
            std::uniform_int_distribution<std::size_t> pick(i, deck.size() - 1);
            std::swap(deck[i], deck[pick(random)]);
        }
        const std::size_t size = deal % 4 == 0 ? 6 : 7;
        const std::span<const int> cards(deck.data(), size);
        const std::uint32_t expected = test::RankBestOfSubsets(cards);
        const HandValue atOnce = evaluator.evaluate(cards);
        Hand board;
        for (std::size_t i = 2; i < size; ++i) {
            board += HandOf(cards[i]);
        }
        const HandValue holePlusBoard =
            evaluator.evaluate(HandOf(cards[0]) + HandOf(cards[1]) + board);
        // Seven cards of a fixed count take the unrolled path, which sums suits only on a flush.
        const HandValue unrolled =
            size == 7 ? evaluator.evaluate(std::span<const int, 7>(deck.data(), 7)) : atOnce;
        if (atOnce.bits() != expected || holePlusBoard != atOnce || unrolled != atOnce) {
            ++mismatches;
            std::string hand;
            for (int card : cards) {
                hand += std::to_string(card) + ' ';
            }
            ADD_FAILURE() << hand << "gives " << atOnce.bits() << " and " << holePlusBoard.bits()
                          << ", best of subsets " << expected;
        }
    }
    EXPECT_EQ(mismatches, 0);
}

// Hands that break the contract (more than seven cards, repeats, garbage bits) give nonsense but
// must never read outside the tables; run under a sanitizer to see the difference.
TEST(HandEvaluator, BrokenHandsStayInsideTheTables) {
    const HandEvaluator evaluator;
    std::mt19937_64 random(99);
    Hand everything;
    for (int card = 1; card <= 52; ++card) {
        everything += HandOf(card);
    }
    std::vector<Hand> broken = {everything, everything + everything, Hand{~0ull, ~0ull}};
    for (int i = 0; i < 100'000; ++i) {
        broken.push_back(Hand{random(), random()});
    }
    for (const Hand& hand : broken) {
        EXPECT_LE(evaluator.evaluate(hand).category(), HandCategory::StraightFlush);
    }
}

TEST(HandEvaluator, ValuesOrderCategoriesFirstThenRanks) {
    // The layout is part of the contract with the server: check it on hand-made values.
    const HandValue wheel = HandValue::make(HandCategory::Straight, {5});
    const HandValue bestHighCard = HandValue::make(HandCategory::HighCard, {14, 13, 12, 11, 9});
    const HandValue worstPair = HandValue::make(HandCategory::OnePair, {2, 5, 4, 3});
    EXPECT_LT(bestHighCard, worstPair);
    EXPECT_LT(worstPair, wheel);
    EXPECT_EQ(wheel.category(), HandCategory::Straight);
    EXPECT_EQ(wheel.rank(0), 5);
    EXPECT_EQ(wheel.rank(1), 0);
    EXPECT_EQ(bestHighCard.rank(4), 9);
    EXPECT_EQ(HandValue::make(HandCategory::StraightFlush, {14}).bits(), 0x9E0000u);
}

}  // namespace
}  // namespace tavren::holdem
