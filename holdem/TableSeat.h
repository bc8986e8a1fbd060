#pragma once

#include <array>
#include <string>

namespace tavren::holdem {

// One seat of a table: who sits there with how many chips, and where that player stands in the
// hand being played.
struct TableSeat {
    bool occupied = false;
    std::string name;
    int chips = 0;  // behind, not counting what is in the pot
    bool sittingOut = false;
    bool leaving = false;  // goes when the hand ends (folding when the turn comes)

    // The hand being played.
    bool dealtIn = false;
    bool folded = false;
    bool allIn = false;
    int streetBet = 0;  // put in on this betting round
    int committed = 0;  // put in during the whole hand, this round included
    std::array<int, 2> hole{};
    bool acted = false;    // acted on this betting round
    int actedAtRaise = 0;  // how many full raises the round had seen when it did
    bool shown = false;    // turned its cards up at the showdown

    bool contesting() const { return dealtIn && !folded; }
    bool canAct() const { return dealtIn && !folded && !allIn; }
};

}  // namespace tavren::holdem
