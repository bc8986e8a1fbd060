#include <gtest/gtest.h>

#include <set>
#include <utility>

#include "holdem/Cards.h"

namespace tavren::holdem {
namespace {

TEST(Cards, SuitAndRankAtTheEdgesOfEachSuit) {
    struct Edge {
        int card;
        const char* suit;
        int rank;
    };
    const Edge edges[] = {
        {1, "Spades", 1},    {13, "Spades", 13},   {14, "Clubs", 1},  {26, "Clubs", 13},
        {27, "Diamonds", 1}, {39, "Diamonds", 13}, {40, "Hearts", 1}, {52, "Hearts", 13},
    };
    for (const Edge& edge : edges) {
        SCOPED_TRACE(edge.card);
        EXPECT_EQ(SuitofCard(edge.card), edge.suit);
        EXPECT_EQ(ShortCardNum(edge.card), edge.rank);
    }
    // No card has no suit; the suit tests run from hearts down, so 53 still reads as hearts.
    EXPECT_EQ(SuitofCard(0), "");
    EXPECT_EQ(SuitofCard(-5), "");
    EXPECT_EQ(SuitofCard(53), "Hearts");
    // The rank is plain arithmetic on any number: 0 reads as a king, 53 as an ace.
    EXPECT_EQ(ShortCardNum(0), 13);
    EXPECT_EQ(ShortCardNum(53), 1);
    EXPECT_FALSE(IsCardNumber(0));
    EXPECT_FALSE(IsCardNumber(53));
}

TEST(Cards, EveryCardIsOneDistinctSuitAndRank) {
    std::set<std::pair<std::string, int>> seen;
    for (int card = kFirstCard; card <= kLastCard; ++card) {
        const int rank = ShortCardNum(card);
        EXPECT_GE(rank, 1);
        EXPECT_LE(rank, 13);
        EXPECT_EQ(SuitIndexOfCard(card), (card - 1) / 13);
        seen.insert({SuitofCard(card), rank});
    }
    EXPECT_EQ(seen.size(), 52u);
}

TEST(Cards, FixNumPromotesOnlyTheAceAndWritesBack) {
    int ace = 1;
    EXPECT_EQ(FixNum(ace), 14);
    EXPECT_EQ(ace, 14);
    int king = 13;
    EXPECT_EQ(FixNum(king), 13);
    EXPECT_EQ(king, 13);
    int alreadyHigh = 14;
    EXPECT_EQ(FixNum(alreadyHigh), 14);
    EXPECT_EQ(HighRankOfCard(40), 14);
    EXPECT_EQ(HighRankOfCard(2), 2);
}

TEST(Cards, RankNamesReadTheAceAsOneOrFourteenAndNothingOutside) {
    EXPECT_EQ(CardDesc1(1), "Ace");
    EXPECT_EQ(CardDesc1(14), "Ace");
    EXPECT_EQ(CardDesc(1), "Aces");
    EXPECT_EQ(CardDesc(14), "Aces");
    EXPECT_EQ(CardDesc1(2), "Two");
    EXPECT_EQ(CardDesc(6), "Sixes");
    EXPECT_EQ(CardDesc1(13), "King");
    EXPECT_EQ(CardDesc(13), "Kings");
    for (int outside : {0, 15, -1, 100}) {
        EXPECT_EQ(CardDesc(outside), "") << outside;
        EXPECT_EQ(CardDesc1(outside), "") << outside;
    }
}

}  // namespace
}  // namespace tavren::holdem
