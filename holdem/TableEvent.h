#pragma once

#include <string>
#include <vector>

#include "holdem/Pots.h"

namespace tavren::holdem {

enum class ActionKind { Fold, Check, Call, Raise, AllIn };

// A move of a player. Raise names the total the player's bet on this round comes to (a bet when
// nothing was bet before); the others take no amount.
struct Action {
    ActionKind kind = ActionKind::Fold;
    int amount = 0;
};

enum class Street { Idle, Preflop, Flop, Turn, River, Showdown };

// What happened at a table, in order, for the service that tells the players. Hole cards are
// events of their own so that they go to their owner only.
struct TableEvent {
    enum class Kind {
        HandStarted,  // seat = the button
        BlindPosted,  // seat, amount
        HoleCards,    // seat, cards (for that seat's eyes only)
        Acted,        // seat, action (what it came to: a raise that could not reach its
                      // amount is never accepted), amount = chips put in by this action,
                      // total = the seat's bet on the round after it, timedOut
        BoardDealt,   // street, cards = the new community cards
        TurnToAct,    // seat
        Shown,        // seat, cards
        Mucked,       // seat
        Returned,     // seat, amount: an uncalled bet given back
        PotWon,       // award
        HandEnded,
        SeatEmptied,  // seat, name, amount = the chips that leave with the player
    };
    Kind kind = Kind::HandEnded;
    int seat = -1;
    ActionKind action = ActionKind::Fold;
    int amount = 0;
    int total = 0;
    int previousBet = 0;  // Acted: the bet the player faced, so a raise of 0 reads as a bet
    bool timedOut = false;
    Street street = Street::Idle;
    std::vector<int> cards;
    PotAward award;
    std::string name;

    static TableEvent of(Kind kind, int seat = -1) {
        TableEvent event;
        event.kind = kind;
        event.seat = seat;
        return event;
    }
};

}  // namespace tavren::holdem
