#pragma once

#include <optional>
#include <span>
#include <string>

#include "holdem/HandValue.h"
#include "holdem/KnownCards.h"

namespace tavren::holdem {

// What the table shows for a player: the words ("FullHouse - Aces Full of Kings") and the value
// the showdown compares.
struct ShownHand {
    std::string description;
    HandValue value;
};

// The best hand of the known cards (any number up to seven; none gives an empty text).
ShownHand BestHand(const KnownCards& cards);

// Same for raw card numbers (0 = not shown); nothing for numbers that are not valid cards.
std::optional<ShownHand> BestHand(std::span<const int> cards);

// The words for a hand value. A high card is named with its suit, so the cards are needed too.
std::string DescribeHand(HandValue value, std::span<const int> cards);

}  // namespace tavren::holdem
