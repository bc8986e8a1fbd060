#pragma once

#include <string>

// The card encoding the whole table client shares. A card is a number 1..52 (0 = no card or face
// down): 1..13 are the spades, 14..26 the clubs, 27..39 the diamonds and 40..52 the hearts, each
// run going ace, two, ..., ten, jack, queen, king.
namespace tavren::holdem {

inline constexpr int kNoCard = 0;
inline constexpr int kFirstCard = 1;
inline constexpr int kLastCard = 52;
inline constexpr int kCardsPerSuit = 13;
inline constexpr int kAceHigh = 14;

constexpr bool IsCardNumber(int card) {
    return card >= kFirstCard && card <= kLastCard;
}

// Suit name of a card ("Spades", "Clubs", "Diamonds", "Hearts"); empty below 1.
std::string SuitofCard(int card);

// Face rank 1..13 of a card: 1 = ace, 11 = jack, 12 = queen, 13 = king.
constexpr int ShortCardNum(int card) {
    const int rank = card % kCardsPerSuit;
    return rank == 0 ? kCardsPerSuit : rank;
}

// Promotes an ace (1) to 14 so that ranks compare on the scale 2..14. Changes the argument in
// place, because the table code calls it on the rank it is about to compare, and returns it too.
constexpr int FixNum(int& rank) {
    if (rank == 1) {
        rank = kAceHigh;
    }
    return rank;
}

// Plural rank name ("Aces", "Twos", ..., "Kings"); 1 and 14 both mean ace; empty outside 1..14.
std::string CardDesc(int rank);

// Singular rank name ("Ace", "Two", ..., "King"); 1 and 14 both mean ace; empty outside 1..14.
std::string CardDesc1(int rank);

// Suit index 0..3 (spades, clubs, diamonds, hearts) of a card number 1..52.
constexpr int SuitIndexOfCard(int card) {
    return (card - 1) / kCardsPerSuit;
}

// Rank on the 2..14 scale of a card number 1..52.
constexpr int HighRankOfCard(int card) {
    int rank = ShortCardNum(card);
    return FixNum(rank);
}

}  // namespace tavren::holdem
