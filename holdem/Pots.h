#pragma once

#include <span>
#include <string>
#include <vector>

#include "holdem/HandValue.h"

namespace tavren::holdem {

// One pot of a hand: the main pot first, then a side pot for every all-in level above it.
struct Pot {
    int amount = 0;
    std::vector<int> eligible;  // seats still in the hand that may win it, in seat order
};

// What one pot paid: the winners in the order the odd chips went round, and what each got.
struct PotAward {
    int pot = 0;  // index into the pots
    int amount = 0;
    std::vector<int> winners;
    std::vector<int> shares;
    std::vector<std::string> names;  // filled by the table: the winners' names
};

// Splits the chips every seat put in (`committed`, folded seats too) into pots. `contesting`
// marks the seats still in the hand. A level is made by every different amount a contesting
// seat put in, so each all-in below the top starts a side pot; chips a folded seat put in beyond
// the top level go to the last pot. A bet nobody called must be given back before this
// (UncalledBet).
std::vector<Pot> BuildPots(std::span<const int> committed, std::span<const bool> contesting);

// The part of the largest commitment that no other seat matched: {seat, chips}, or {-1, 0}.
struct Uncalled {
    int seat = -1;
    int chips = 0;
};
Uncalled UncalledBet(std::span<const int> committed);

// Pays each pot to the best hands among its eligible seats (equal values split it). The chips
// that do not divide evenly go one at a time to the winners in seat order starting with the
// first seat after the button, which is the conventional rule. `values` is indexed by seat.
std::vector<PotAward> SettlePots(std::span<const Pot> pots, std::span<const HandValue> values,
                                 int button);

}  // namespace tavren::holdem
