#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "holdem/Deck.h"
#include "holdem/HandEvaluator.h"
#include "holdem/Pots.h"
#include "holdem/TableEvent.h"
#include "holdem/TableRules.h"
#include "holdem/TableSeat.h"

namespace tavren::holdem {

// One no-limit Texas Hold'em table: the seats, the button, and the hand being played, from the
// blinds to the settlement. Plain C++ with no clock and no network: whoever owns it deals a
// shuffled deck, forwards the players' moves, calls timeOut() when the player to act let the
// clock run out, and tells the players what takeEvents() returns.
//
// The chips are conserved: the chips behind at every seat plus everything put in the pot only
// ever move between seats; sit() brings chips in and a SeatEmptied event takes them out.
class HoldemTable {
  public:
    explicit HoldemTable(TableRules rules);

    const TableRules& rules() const { return rules_; }
    int seatCount() const { return static_cast<int>(seats_.size()); }
    const TableSeat& seat(int index) const { return seats_.at(static_cast<std::size_t>(index)); }
    // The seat of a player (names compared without regard to ASCII case), if seated.
    std::optional<int> seatOf(std::string_view name) const;
    int occupiedSeats() const;

    // Seats a player with these chips at the first free seat. Nothing when the table is full,
    // the name is seated already, or the chips are not positive.
    std::optional<int> sit(std::string name, int chips);
    // The player goes: at once when not dealt into the hand being played, else at its end
    // (folding as soon as the turn comes, or now when it is the player's turn).
    void leave(int seat);
    // A player sitting out keeps the seat and is not dealt in from the next hand on.
    void setSittingOut(int seat, bool out);

    // Two or more seated players who are not sitting out and have chips.
    bool canStartHand() const;
    // Moves the button, posts the blinds and deals from `deck`. False (nothing happens) while a
    // hand is on, when canStartHand() is false, or when the deck is not a full deck.
    bool startHand(const Deck& deck);
    bool handInProgress() const { return street_ != Street::Idle; }

    // A player's move. Refused with a sentence for the player when it is not that player's
    // turn or not a legal move; the table is then unchanged.
    struct Outcome {
        bool accepted = false;
        std::string refusal;
    };
    Outcome act(int seat, Action action);
    // The player to act let the clock run out: checks when that is free, else folds.
    void timeOut();

    int toAct() const { return toAct_; }
    int button() const { return button_; }
    Street street() const { return street_; }
    int handNumber() const { return handNumber_; }
    std::span<const int> board() const { return {board_.data(), boardCount_}; }
    int currentBet() const { return currentBet_; }
    // Chips this seat needs to call (at most what it has).
    int callAmount(int seat) const;
    // Whether the seat may raise now, and the totals its raise may come to.
    bool canRaise(int seat) const;
    int minRaiseTo(int seat) const;
    int maxRaiseTo(int seat) const;
    // The pots as they stand, bets of the current round included: a pot closes at each all-in
    // level, the bets above the highest all-in are one pot.
    std::vector<Pot> pots() const;
    // Every chip at the table: behind and in the pot.
    long long totalChips() const;

    // What happened since the last call, in order.
    std::vector<TableEvent> takeEvents();

  private:
    int nextSeat(int from, bool (*wanted)(const TableSeat&)) const;
    int dealtCount() const;
    int contestingCount() const;
    void post(int seat, int amount);
    void putIn(TableSeat& seat, int chips);
    void afterAction(int seat);
    bool needsAction(int seat) const;
    int nextToAct(int after) const;
    void endStreet();
    void dealBoard(Street street, int cards);
    void showdown();
    void finishHand(const std::vector<HandValue>& values);
    std::vector<int> committedChips() const;
    // The pots that are paid: one per level any player still in has reached, after the part of
    // a bet nobody matched went back.
    std::vector<Pot> settlementPots() const;
    void giveBack(const Uncalled& uncalled);
    void emit(TableEvent event) {
        if (event.seat >= 0 && event.name.empty() && seat(event.seat).occupied) {
            event.name = seat(event.seat).name;  // still known when the seat empties later
        }
        events_.push_back(std::move(event));
    }
    void tellTurn();

    TableRules rules_;
    std::vector<TableSeat> seats_;
    HandEvaluator evaluator_;
    Street street_ = Street::Idle;
    int button_ = -1;
    int toAct_ = -1;
    int handNumber_ = 0;
    Deck deck_{};
    std::size_t dealt_ = 0;
    std::array<int, 5> board_{};
    std::size_t boardCount_ = 0;
    int currentBet_ = 0;
    int lastRaiseSize_ = 0;
    int fullRaises_ = 0;
    int lastAggressor_ = -1;
    bool timingOut_ = false;
    std::vector<TableEvent> events_;
};

}  // namespace tavren::holdem
