#include <gtest/gtest.h>

#include <vector>

#include "holdem/HandDescription.h"

namespace tavren::holdem {
namespace {

// Card number from a rank 2..14 and a suit letter, so hands in the tests read like poker.
int C(int rank, char suit) {
    const int face = rank == 14 ? 1 : rank;
    const int suitIndex = suit == 's' ? 0 : suit == 'c' ? 1 : suit == 'd' ? 2 : 3;
    return suitIndex * 13 + face;
}

constexpr int T = 10, J = 11, Q = 12, K = 13, A = 14;

ShownHand Best(const std::vector<int>& cards) {
    const auto shown = BestHand(std::span<const int>(cards));
    EXPECT_TRUE(shown.has_value());
    return shown.value_or(ShownHand{});
}

TEST(HandDescription, EveryCategoryHasItsExactText) {
    struct Case {
        std::vector<int> cards;
        const char* text;
        HandCategory category;
    };
    const Case cases[] = {
        {{C(A, 's'), C(K, 's'), C(Q, 's'), C(J, 's'), C(T, 's'), C(2, 'c'), C(3, 'd')},
         "Royal Flush!",
         HandCategory::StraightFlush},
        {{C(9, 'h'), C(8, 'h'), C(7, 'h'), C(6, 'h'), C(5, 'h'), C(A, 's'), C(A, 'c')},
         "Straight Flush Nine High",
         HandCategory::StraightFlush},
        {{C(K, 's'), C(K, 'c'), C(K, 'd'), C(K, 'h'), C(2, 's'), C(3, 'c'), C(4, 'd')},
         "Four of a kind - Kings",
         HandCategory::FourOfAKind},
        {{C(A, 's'), C(A, 'c'), C(A, 'd'), C(K, 's'), C(K, 'c'), C(2, 'd'), C(3, 'h')},
         "FullHouse - Aces Full of Kings",
         HandCategory::FullHouse},
        {{C(A, 'd'), C(9, 'd'), C(7, 'd'), C(4, 'd'), C(2, 'd'), C(K, 's'), C(K, 'c')},
         "Flush - Ace High",
         HandCategory::Flush},
        {{C(T, 's'), C(9, 'c'), C(8, 'd'), C(7, 'h'), C(6, 's'), C(2, 'c'), C(2, 'd')},
         "Straight Ten High",
         HandCategory::Straight},
        {{C(Q, 's'), C(Q, 'c'), C(Q, 'd'), C(9, 'h'), C(7, 's'), C(4, 'c'), C(2, 'd')},
         "3 of a kind - Queens",
         HandCategory::ThreeOfAKind},
        {{C(J, 's'), C(J, 'c'), C(8, 'd'), C(8, 'h'), C(5, 's'), C(3, 'c'), C(2, 'd')},
         "2 Pairs - Jacks and Eights",
         HandCategory::TwoPairs},
        {{C(6, 's'), C(6, 'c'), C(A, 'd'), C(J, 'h'), C(9, 's'), C(4, 'c'), C(2, 'd')},
         "Pair of Sixes",
         HandCategory::OnePair},
        {{C(A, 'd'), C(J, 'c'), C(9, 's'), C(7, 'h'), C(5, 's'), C(3, 'c'), C(2, 'd')},
         "High Card - Ace of Diamonds",
         HandCategory::HighCard},
    };
    for (const Case& c : cases) {
        const ShownHand shown = Best(c.cards);
        EXPECT_EQ(shown.description, c.text);
        EXPECT_EQ(shown.value.category(), c.category) << c.text;
    }
}

TEST(HandDescription, AceToFiveIsTheLowestStraightAndNeverWrapsAround) {
    const ShownHand wheel =
        Best({C(A, 's'), C(2, 'c'), C(3, 'd'), C(4, 'h'), C(5, 's'), C(9, 'c'), C(K, 'd')});
    EXPECT_EQ(wheel.description, "Straight Five High");
    const ShownHand sixHigh =
        Best({C(A, 's'), C(2, 'c'), C(3, 'd'), C(4, 'h'), C(5, 's'), C(6, 'c'), C(K, 'd')});
    EXPECT_EQ(sixHigh.description, "Straight Six High");
    EXPECT_LT(wheel.value, sixHigh.value);
    const ShownHand trips = Best({C(7, 's'), C(7, 'c'), C(7, 'd'), C(A, 'h'), C(K, 's')});
    EXPECT_GT(wheel.value, trips.value);

    EXPECT_EQ(Best({C(A, 'h'), C(2, 'h'), C(3, 'h'), C(4, 'h'), C(5, 'h'), C(K, 'h')}).description,
              "Straight Flush Five High");
    // Queen, king, ace, two, three is no straight.
    EXPECT_EQ(Best({C(Q, 's'), C(K, 'c'), C(A, 'd'), C(2, 'h'), C(3, 's')}).description,
              "High Card - Ace of Diamonds");
}

TEST(HandDescription, SeveralCandidatesNameTheBestFiveCards) {
    EXPECT_EQ(Best({C(K, 's'), C(K, 'c'), C(K, 'd'), C(5, 's'), C(5, 'c'), C(5, 'd'), C(2, 'h')})
                  .description,
              "FullHouse - Kings Full of Fives");
    EXPECT_EQ(Best({C(7, 's'), C(7, 'c'), C(7, 'd'), C(2, 's'), C(2, 'c'), C(A, 'd'), C(A, 'h')})
                  .description,
              "FullHouse - Sevens Full of Aces");
    EXPECT_EQ(Best({C(2, 's'), C(2, 'c'), C(A, 'd'), C(A, 'h'), C(K, 's'), C(K, 'c'), C(Q, 'd')})
                  .description,
              "2 Pairs - Aces and Kings");
    // Six hearts with a straight flush below the top heart.
    EXPECT_EQ(Best({C(2, 'h'), C(3, 'h'), C(4, 'h'), C(5, 'h'), C(6, 'h'), C(K, 'h'), C(7, 's')})
                  .description,
              "Straight Flush Six High");
    // A flush beats the straight it contains cards of.
    EXPECT_EQ(Best({C(9, 'c'), C(T, 'd'), C(J, 'c'), C(Q, 'c'), C(K, 'c'), C(3, 'c'), C(2, 's')})
                  .description,
              "Flush - King High");
    // The high card is named with its own suit, not the suit of a lower card.
    EXPECT_EQ(Best({C(3, 's'), C(K, 'h'), C(9, 'c'), C(7, 'd'), C(5, 'd')}).description,
              "High Card - King of Hearts");
}

TEST(HandDescription, PlayersWhoseBestFiveAreTheBoardSplit) {
    const std::vector<int> royalBoard = {C(A, 's'), C(K, 's'), C(Q, 's'), C(J, 's'), C(T, 's')};
    std::vector<int> first = royalBoard;
    first.insert(first.end(), {C(2, 'c'), C(3, 'd')});
    std::vector<int> second = royalBoard;
    second.insert(second.end(), {C(A, 'h'), C(A, 'd')});
    EXPECT_EQ(Best(first).description, "Royal Flush!");
    EXPECT_EQ(Best(first).value, Best(second).value);

    // A nine-high straight on the board: a pair in the hole does not help, a ten does.
    const std::vector<int> straightBoard = {C(5, 's'), C(6, 'c'), C(7, 'd'), C(8, 'h'), C(9, 's')};
    std::vector<int> pocketPair = straightBoard;
    pocketPair.insert(pocketPair.end(), {C(2, 'c'), C(2, 'd')});
    std::vector<int> junk = straightBoard;
    junk.insert(junk.end(), {C(K, 'c'), C(3, 'd')});
    std::vector<int> ten = straightBoard;
    ten.insert(ten.end(), {C(T, 'c'), C(3, 'd')});
    EXPECT_EQ(Best(pocketPair).description, "Straight Nine High");
    EXPECT_EQ(Best(pocketPair).value, Best(junk).value);
    EXPECT_GT(Best(ten).value, Best(junk).value);
}

TEST(HandDescription, KickersDecideOtherwiseEqualHands) {
    const std::vector<int> board = {C(A, 's'), C(A, 'c'), C(9, 'd'), C(6, 'h'), C(3, 's')};
    auto with = [&](int first, int second) {
        std::vector<int> cards = board;
        cards.insert(cards.end(), {first, second});
        return Best(cards).value;
    };
    // Pair of aces: a king kicker beats a queen; a difference in the sixth card does not count.
    EXPECT_GT(with(C(K, 'd'), C(2, 'h')), with(C(Q, 'd'), C(2, 'h')));
    EXPECT_EQ(with(C(K, 'd'), C(2, 'h')), with(C(K, 'h'), C(4, 'c')));
    EXPECT_GT(with(C(K, 'd'), C(T, 'h')), with(C(K, 'h'), C(8, 'c')));

    // Two pairs with a third pair: the third pair's rank still serves as the kicker.
    const auto threePairs =
        Best({C(A, 's'), C(A, 'c'), C(K, 'd'), C(K, 'h'), C(Q, 's'), C(Q, 'c'), C(2, 'd')});
    const auto jackKicker =
        Best({C(A, 's'), C(A, 'c'), C(K, 'd'), C(K, 'h'), C(J, 's'), C(3, 'c'), C(2, 'd')});
    EXPECT_GT(threePairs.value, jackKicker.value);
    // Flushes compare all five cards, down to the last.
    const auto flushLowFive =
        Best({C(A, 'h'), C(J, 'h'), C(9, 'h'), C(7, 'h'), C(3, 'h'), C(2, 's'), C(2, 'c')});
    const auto flushLowFour =
        Best({C(A, 'h'), C(J, 'h'), C(9, 'h'), C(7, 'h'), C(2, 'h'), C(K, 's'), C(K, 'c')});
    EXPECT_GT(flushLowFive.value, flushLowFour.value);
    // Quads: the fifth card matters, the kicker may come from a pair.
    EXPECT_GT(
        Best({C(8, 's'), C(8, 'c'), C(8, 'd'), C(8, 'h'), C(Q, 's'), C(Q, 'c'), C(2, 'd')}).value,
        Best({C(8, 's'), C(8, 'c'), C(8, 'd'), C(8, 'h'), C(J, 's'), C(3, 'c'), C(2, 'd')}).value);
}

TEST(HandDescription, HiddenCardsTakeNoPartAndFewCardsStillNameAHand) {
    EXPECT_EQ(Best({C(A, 's'), C(A, 'h'), 0, 0, 0, 0, 0}).description, "Pair of Aces");
    EXPECT_EQ(Best({C(K, 'c'), C(A, 'd')}).description, "High Card - Ace of Diamonds");
    EXPECT_EQ(Best({C(4, 's'), C(4, 'c'), C(4, 'd'), C(4, 'h')}).description,
              "Four of a kind - Fours");
    EXPECT_EQ(Best({C(4, 's'), C(4, 'c'), 0, C(9, 'd'), C(9, 'h'), 0, C(9, 's')}).description,
              "FullHouse - Nines Full of Fours");
    // Before the river, a card still to come can only add: the known part ranks lower.
    EXPECT_LT(Best({C(A, 's'), C(A, 'h')}).value, Best({C(A, 's'), C(A, 'h'), C(2, 'c')}).value);

    const ShownHand none = Best({0, 0});
    EXPECT_EQ(none.description, "");
    EXPECT_EQ(none.value, HandValue());
}

TEST(HandDescription, InvalidCardsGiveNoHand) {
    const std::vector<int> repeated = {C(A, 's'), C(A, 's'), C(2, 'c')};
    const std::vector<int> outside = {53, 1, 2};
    const std::vector<int> negative = {-1, 1, 2};
    const std::vector<int> eight = {1, 2, 3, 4, 5, 6, 7, 8};
    for (const auto* cards : {&repeated, &outside, &negative, &eight}) {
        EXPECT_FALSE(BestHand(std::span<const int>(*cards)).has_value());
    }
}

}  // namespace
}  // namespace tavren::holdem
