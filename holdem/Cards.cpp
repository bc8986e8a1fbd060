#include "holdem/Cards.h"

#include <array>
#include <string_view>

namespace tavren::holdem {

namespace {

// Indexed by rank 1..14; index 0 is unused so that the ace can be looked up as 1 or 14.
constexpr std::array<std::string_view, 15> kSingularNames = {
    "",      "Ace",  "Two", "Three", "Four",  "Five", "Six", "Seven",
    "Eight", "Nine", "Ten", "Jack",  "Queen", "King", "Ace"};

constexpr std::array<std::string_view, 15> kPluralNames = {
    "",       "Aces",  "Twos", "Threes", "Fours",  "Fives", "Sixes", "Sevens",
    "Eights", "Nines", "Tens", "Jacks",  "Queens", "Kings", "Aces"};

std::string NameOfRank(const std::array<std::string_view, 15>& names, int rank) {
    if (rank < 1 || rank > kAceHigh) {
        return {};
    }
    return std::string(names[static_cast<std::size_t>(rank)]);
}

}  // namespace

std::string SuitofCard(int card) {
    // Tested from the top down, so any number above 52 still reads as hearts.
    if (card >= 40) {
        return "Hearts";
    }
    if (card >= 27) {
        return "Diamonds";
    }
    if (card >= 14) {
        return "Clubs";
    }
    if (card >= 1) {
        return "Spades";
    }
    return {};
}

std::string CardDesc(int rank) {
    return NameOfRank(kPluralNames, rank);
}

std::string CardDesc1(int rank) {
    return NameOfRank(kSingularNames, rank);
}

}  // namespace tavren::holdem
