#pragma once

#include <array>
#include <cstdint>

#include "holdem/HandValue.h"

// The rules of Texas Hold'em hand ranking, written plainly. The evaluator runs them once per rank
// pattern while it builds its tables; nothing calls them per hand.
namespace tavren::holdem {

// How many cards of each rank a hand holds, indexed 0..12 for two..ace.
using RankCounts = std::array<std::uint8_t, 13>;

// Value of the best hand up to five cards can make from these ranks when no flush is possible.
// The ace-to-five straight counts; with several pairs or trips the highest ones are used.
HandValue ValueOfRanks(const RankCounts& counts);

// Value of a flush whose cards have the ranks set in mask (bit 0 = two .. bit 12 = ace, at least
// five bits): a straight flush when five of them run in sequence, else the five highest.
HandValue ValueOfFlush(std::uint32_t rankMask);

// Top rank (2..14, 5 for ace-to-five) of the best straight in the rank mask, or 0 when none.
int TopOfStraight(std::uint32_t rankMask);

}  // namespace tavren::holdem
