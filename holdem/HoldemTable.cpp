#include "holdem/HoldemTable.h"

#include <algorithm>
#include <cctype>
#include <utility>

namespace tavren::holdem {

namespace {

bool SameName(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) ==
                      std::tolower(static_cast<unsigned char>(y));
           });
}

bool IsDealtIn(const TableSeat& seat) {
    return seat.dealtIn;
}
bool IsContesting(const TableSeat& seat) {
    return seat.contesting();
}

}  // namespace

HoldemTable::HoldemTable(TableRules rules)
    : rules_(rules),
      seats_(static_cast<std::size_t>(
          std::clamp(rules.seats, TableRules::kMinSeats, TableRules::kMaxSeats))) {}

std::optional<int> HoldemTable::seatOf(std::string_view name) const {
    for (int index = 0; index < seatCount(); ++index) {
        if (seat(index).occupied && SameName(seat(index).name, name)) {
            return index;
        }
    }
    return std::nullopt;
}

int HoldemTable::occupiedSeats() const {
    return static_cast<int>(
        std::count_if(seats_.begin(), seats_.end(), [](const TableSeat& s) { return s.occupied; }));
}

std::optional<int> HoldemTable::sit(std::string name, int chips) {
    if (name.empty() || chips <= 0 || seatOf(name)) {
        return std::nullopt;
    }
    for (int index = 0; index < seatCount(); ++index) {
        TableSeat& free = seats_[static_cast<std::size_t>(index)];
        if (!free.occupied) {
            free = TableSeat{};
            free.occupied = true;
            free.name = std::move(name);
            free.chips = chips;
            return index;
        }
    }
    return std::nullopt;
}

void HoldemTable::leave(int index) {
    if (index < 0 || index >= seatCount() || !seat(index).occupied) {
        return;
    }
    TableSeat& leaving = seats_[static_cast<std::size_t>(index)];
    if (handInProgress() && leaving.dealtIn) {
        // What it put in stays in the pots until they are settled.
        leaving.leaving = true;
        leaving.sittingOut = true;
        if (toAct_ == index) {
            act(index, Action{ActionKind::Fold, 0});
        }
        return;
    }
    TableEvent gone = TableEvent::of(TableEvent::Kind::SeatEmptied, index);
    gone.amount = leaving.chips;
    gone.name = leaving.name;
    leaving = TableSeat{};
    emit(std::move(gone));
}

void HoldemTable::setSittingOut(int index, bool out) {
    if (index >= 0 && index < seatCount() && seat(index).occupied) {
        seats_[static_cast<std::size_t>(index)].sittingOut = out;
    }
}

bool HoldemTable::canStartHand() const {
    return std::count_if(seats_.begin(), seats_.end(), [](const TableSeat& s) {
               return s.occupied && !s.sittingOut && !s.leaving && s.chips > 0;
           }) >= 2;
}

int HoldemTable::nextSeat(int from, bool (*wanted)(const TableSeat&)) const {
    for (int step = 1; step <= seatCount(); ++step) {
        const int index = ((from + step) % seatCount() + seatCount()) % seatCount();
        if (wanted(seat(index))) {
            return index;
        }
    }
    return -1;
}

int HoldemTable::dealtCount() const {
    return static_cast<int>(std::count_if(seats_.begin(), seats_.end(), IsDealtIn));
}

int HoldemTable::contestingCount() const {
    return static_cast<int>(std::count_if(seats_.begin(), seats_.end(), IsContesting));
}

bool HoldemTable::startHand(const Deck& deck) {
    if (handInProgress() || !canStartHand() || !IsFullDeck(deck)) {
        return false;
    }
    ++handNumber_;
    deck_ = deck;
    dealt_ = 0;
    board_ = {};
    boardCount_ = 0;
    for (TableSeat& s : seats_) {
        const bool dealIn = s.occupied && !s.sittingOut && !s.leaving && s.chips > 0;
        s.dealtIn = dealIn;
        s.folded = s.allIn = s.acted = s.shown = false;
        s.streetBet = s.committed = s.actedAtRaise = 0;
        s.hole = {};
    }
    button_ = nextSeat(button_ < 0 ? -1 : button_, IsDealtIn);
    // Heads-up the button posts the small blind and acts first before the flop.
    const int smallBlind = dealtCount() == 2 ? button_ : nextSeat(button_, IsDealtIn);
    const int bigBlind = nextSeat(smallBlind, IsDealtIn);
    street_ = Street::Preflop;
    toAct_ = -1;
    emit(TableEvent::of(TableEvent::Kind::HandStarted, button_));
    post(smallBlind, rules_.smallBlind);
    post(bigBlind, rules_.bigBlind);
    currentBet_ = std::max(seat(smallBlind).streetBet, seat(bigBlind).streetBet);
    lastRaiseSize_ = rules_.bigBlind;
    fullRaises_ = 0;
    lastAggressor_ = -1;

    for (int round = 0; round < 2; ++round) {
        int index = button_;
        for (int n = 0; n < dealtCount(); ++n) {
            index = nextSeat(index, IsDealtIn);
            seats_[static_cast<std::size_t>(index)].hole[static_cast<std::size_t>(round)] =
                deck_[dealt_++];
        }
    }
    for (int index = 0; index < seatCount(); ++index) {
        if (seat(index).dealtIn) {
            TableEvent cards = TableEvent::of(TableEvent::Kind::HoleCards, index);
            cards.cards = {seat(index).hole[0], seat(index).hole[1]};
            emit(std::move(cards));
        }
    }
    const int first = nextToAct(bigBlind);
    if (first < 0) {
        endStreet();
    } else {
        toAct_ = first;
        tellTurn();
    }
    return true;
}

void HoldemTable::putIn(TableSeat& s, int chips) {
    chips = std::clamp(chips, 0, s.chips);
    s.chips -= chips;
    s.streetBet += chips;
    s.committed += chips;
    if (s.chips == 0) {
        s.allIn = true;
    }
}

void HoldemTable::post(int index, int amount) {
    TableSeat& s = seats_[static_cast<std::size_t>(index)];
    const int before = s.streetBet;
    putIn(s, amount);
    TableEvent posted = TableEvent::of(TableEvent::Kind::BlindPosted, index);
    posted.amount = s.streetBet - before;
    posted.total = s.streetBet;
    emit(std::move(posted));
}

int HoldemTable::callAmount(int index) const {
    if (index < 0 || index >= seatCount()) {
        return 0;
    }
    const TableSeat& s = seat(index);
    return std::clamp(currentBet_ - s.streetBet, 0, s.chips);
}

bool HoldemTable::canRaise(int index) const {
    if (index < 0 || index >= seatCount() || !seat(index).canAct()) {
        return false;
    }
    const TableSeat& s = seat(index);
    if (s.chips <= currentBet_ - s.streetBet) {
        return false;  // all it has is a call
    }
    // An all-in short of a full raise does not reopen the betting for those who acted.
    if (s.acted && s.actedAtRaise >= fullRaises_) {
        return false;
    }
    for (int other = 0; other < seatCount(); ++other) {
        if (other != index && seat(other).canAct()) {
            return true;
        }
    }
    return false;
}

int HoldemTable::minRaiseTo(int index) const {
    if (!canRaise(index)) {
        return 0;
    }
    return std::min(currentBet_ + lastRaiseSize_, maxRaiseTo(index));
}

int HoldemTable::maxRaiseTo(int index) const {
    if (index < 0 || index >= seatCount()) {
        return 0;
    }
    return seat(index).streetBet + seat(index).chips;
}

HoldemTable::Outcome HoldemTable::act(int index, Action action) {
    if (street_ == Street::Idle || street_ == Street::Showdown || toAct_ < 0) {
        return {false, "No hand is being played."};
    }
    if (index != toAct_) {
        return {false, "It is not your turn."};
    }
    TableSeat& s = seats_[static_cast<std::size_t>(index)];
    const int before = s.streetBet;
    const int faced = currentBet_;
    ActionKind done = action.kind;
    switch (action.kind) {
        case ActionKind::Fold:
            s.folded = true;
            break;
        case ActionKind::Check:
            if (s.streetBet < currentBet_) {
                return {false,
                        "You cannot check: " + std::to_string(callAmount(index)) + " to call."};
            }
            break;
        case ActionKind::Call:
            if (s.streetBet >= currentBet_) {
                return {false, "There is nothing to call."};
            }
            putIn(s, currentBet_ - s.streetBet);
            break;
        case ActionKind::AllIn:
        case ActionKind::Raise: {
            const int target = action.kind == ActionKind::AllIn ? maxRaiseTo(index) : action.amount;
            if (action.kind == ActionKind::AllIn && target <= currentBet_) {
                putIn(s, s.chips);  // a call for less, or exactly
                break;
            }
            if (!canRaise(index)) {
                if (action.kind == ActionKind::AllIn) {
                    // Nobody could answer a raise, or the betting is closed to this player:
                    // going all in means calling.
                    putIn(s, currentBet_ - s.streetBet);
                    done = ActionKind::Call;
                    break;
                }
                return {false, "You cannot raise now."};
            }
            if (target > maxRaiseTo(index)) {
                return {false, "You only have " + std::to_string(s.chips) + " chips."};
            }
            if (target < minRaiseTo(index)) {
                return {false, std::string(currentBet_ == 0 ? "The smallest bet is "
                                                            : "The smallest raise is to ") +
                                   std::to_string(minRaiseTo(index)) + "."};
            }
            if (target - currentBet_ >= lastRaiseSize_) {
                lastRaiseSize_ = target - currentBet_;
                ++fullRaises_;
            }
            currentBet_ = target;
            lastAggressor_ = index;
            putIn(s, target - s.streetBet);
            done = ActionKind::Raise;
            break;
        }
    }
    if (s.allIn && done != ActionKind::Fold) {
        done = ActionKind::AllIn;
    }
    s.acted = true;
    s.actedAtRaise = fullRaises_;
    TableEvent acted = TableEvent::of(TableEvent::Kind::Acted, index);
    acted.action = done;
    acted.amount = s.streetBet - before;
    acted.total = s.streetBet;
    acted.timedOut = timingOut_;
    acted.previousBet = faced;
    emit(std::move(acted));
    afterAction(index);
    return {true, {}};
}

void HoldemTable::timeOut() {
    if (toAct_ < 0) {
        return;
    }
    timingOut_ = true;
    act(toAct_,
        Action{callAmount(toAct_) == 0 && seat(toAct_).streetBet >= currentBet_ ? ActionKind::Check
                                                                                : ActionKind::Fold,
               0});
    timingOut_ = false;
}

bool HoldemTable::needsAction(int index) const {
    const TableSeat& s = seat(index);
    if (!s.canAct()) {
        return false;
    }
    if (s.streetBet < currentBet_) {
        return true;
    }
    if (s.acted) {
        return false;
    }
    for (int other = 0; other < seatCount(); ++other) {
        if (other != index && seat(other).canAct()) {
            return true;
        }
    }
    return false;  // alone against all-ins, with nothing to call
}

int HoldemTable::nextToAct(int after) const {
    for (int step = 1; step <= seatCount(); ++step) {
        const int index = (after + step) % seatCount();
        if (needsAction(index)) {
            return index;
        }
    }
    return -1;
}

void HoldemTable::tellTurn() {
    if (seat(toAct_).leaving) {
        act(toAct_, Action{ActionKind::Fold, 0});
        return;
    }
    emit(TableEvent::of(TableEvent::Kind::TurnToAct, toAct_));
}

void HoldemTable::afterAction(int index) {
    if (contestingCount() == 1) {
        toAct_ = -1;
        const Uncalled uncalled = UncalledBet(committedChips());
        giveBack(uncalled);
        finishHand(std::vector<HandValue>(seats_.size()));
        return;
    }
    const int next = nextToAct(index);
    if (next >= 0) {
        toAct_ = next;
        tellTurn();
        return;
    }
    endStreet();
}

std::vector<int> HoldemTable::committedChips() const {
    std::vector<int> committed;
    for (const TableSeat& s : seats_) {
        committed.push_back(s.committed);
    }
    return committed;
}

void HoldemTable::giveBack(const Uncalled& uncalled) {
    if (uncalled.seat < 0) {
        return;
    }
    TableSeat& s = seats_[static_cast<std::size_t>(uncalled.seat)];
    s.committed -= uncalled.chips;
    s.streetBet = std::max(0, s.streetBet - uncalled.chips);
    s.chips += uncalled.chips;
    if (s.chips > 0) {
        s.allIn = false;
    }
    TableEvent back = TableEvent::of(TableEvent::Kind::Returned, uncalled.seat);
    back.amount = uncalled.chips;
    emit(std::move(back));
}

void HoldemTable::endStreet() {
    toAct_ = -1;
    while (true) {
        for (TableSeat& s : seats_) {
            s.streetBet = 0;
            s.acted = false;
            s.actedAtRaise = 0;
        }
        currentBet_ = 0;
        lastRaiseSize_ = rules_.bigBlind;
        fullRaises_ = 0;
        switch (street_) {
            case Street::Preflop:
                dealBoard(Street::Flop, 3);
                break;
            case Street::Flop:
                dealBoard(Street::Turn, 1);
                break;
            case Street::Turn:
                dealBoard(Street::River, 1);
                break;
            default:
                showdown();
                return;
        }
        const int first = nextToAct(button_);
        if (first >= 0) {
            lastAggressor_ = -1;
            toAct_ = first;
            tellTurn();
            return;
        }
    }
}

void HoldemTable::dealBoard(Street street, int cards) {
    ++dealt_;  // the burn card
    TableEvent dealtEvent = TableEvent::of(TableEvent::Kind::BoardDealt);
    dealtEvent.street = street;
    for (int n = 0; n < cards; ++n) {
        board_[boardCount_++] = deck_[dealt_];
        dealtEvent.cards.push_back(deck_[dealt_++]);
    }
    street_ = street;
    emit(std::move(dealtEvent));
}

void HoldemTable::showdown() {
    street_ = Street::Showdown;
    toAct_ = -1;
    giveBack(UncalledBet(committedChips()));

    std::vector<HandValue> values(seats_.size());
    for (int index = 0; index < seatCount(); ++index) {
        if (seat(index).contesting()) {
            std::array<int, 7> cards{seat(index).hole[0], seat(index).hole[1]};
            std::copy(board_.begin(), board_.end(), cards.begin() + 2);
            values[static_cast<std::size_t>(index)] =
                evaluator_.evaluate(std::span<const int, 7>(cards));
        }
    }
    const std::vector<Pot> potList = settlementPots();
    // The last to bet or raise on the final round shows first; after a round checked through,
    // the first player after the button. Then round the table: a hand that cannot win any pot
    // it is in against what is shown already goes into the muck unseen.
    int first = lastAggressor_ >= 0 && seat(lastAggressor_).contesting()
                    ? lastAggressor_
                    : nextSeat(button_, IsContesting);
    std::vector<HandValue> bestShown(potList.size());
    std::vector<bool> anyShown(potList.size(), false);
    for (int step = 0; step < seatCount(); ++step) {
        const int index = (first + step) % seatCount();
        if (!seat(index).contesting()) {
            continue;
        }
        const HandValue value = values[static_cast<std::size_t>(index)];
        bool couldWin = false;
        for (std::size_t p = 0; p < potList.size(); ++p) {
            const auto& eligible = potList[p].eligible;
            if (std::find(eligible.begin(), eligible.end(), index) != eligible.end() &&
                (!anyShown[p] || value >= bestShown[p])) {
                couldWin = true;
            }
        }
        if (!couldWin) {
            values[static_cast<std::size_t>(index)] = HandValue{};
            emit(TableEvent::of(TableEvent::Kind::Mucked, index));
            continue;
        }
        seats_[static_cast<std::size_t>(index)].shown = true;
        for (std::size_t p = 0; p < potList.size(); ++p) {
            const auto& eligible = potList[p].eligible;
            if (std::find(eligible.begin(), eligible.end(), index) != eligible.end() &&
                (!anyShown[p] || value > bestShown[p])) {
                bestShown[p] = value;
                anyShown[p] = true;
            }
        }
        TableEvent shown = TableEvent::of(TableEvent::Kind::Shown, index);
        shown.cards = {seat(index).hole[0], seat(index).hole[1]};
        emit(std::move(shown));
    }
    finishHand(values);
}

std::vector<Pot> HoldemTable::pots() const {
    if (street_ == Street::Idle || street_ == Street::Showdown) {
        return settlementPots();
    }
    // While the betting goes on, only an all-in closes a pot: the bets above the highest all-in
    // are one pot still growing, whoever has matched them so far.
    std::vector<int> levels;
    for (const TableSeat& s : seats_) {
        if (s.contesting() && s.allIn) {
            levels.push_back(s.committed);
        }
    }
    std::sort(levels.begin(), levels.end());
    levels.erase(std::unique(levels.begin(), levels.end()), levels.end());
    std::vector<Pot> inPlay;
    int below = 0;
    for (int level : levels) {
        Pot pot;
        for (int index = 0; index < seatCount(); ++index) {
            const TableSeat& s = seat(index);
            pot.amount += std::clamp(s.committed, below, level) - below;
            if (s.contesting() && s.committed >= level) {
                pot.eligible.push_back(index);
            }
        }
        inPlay.push_back(std::move(pot));
        below = level;
    }
    Pot rest;
    for (int index = 0; index < seatCount(); ++index) {
        const TableSeat& s = seat(index);
        rest.amount += std::max(0, s.committed - below);
        if (s.contesting() && s.committed > below) {
            rest.eligible.push_back(index);
        }
    }
    if (rest.amount > 0) {
        inPlay.push_back(std::move(rest));
    }
    return inPlay;
}

std::vector<Pot> HoldemTable::settlementPots() const {
    std::array<bool, TableRules::kMaxSeats> contesting{};
    for (std::size_t index = 0; index < seats_.size(); ++index) {
        contesting[index] = seats_[index].contesting();
    }
    return BuildPots(committedChips(), std::span<const bool>(contesting.data(), seats_.size()));
}

void HoldemTable::finishHand(const std::vector<HandValue>& values) {
    const std::vector<Pot> potList = settlementPots();
    for (PotAward& award : SettlePots(potList, values, button_)) {
        for (std::size_t i = 0; i < award.winners.size(); ++i) {
            TableSeat& winner = seats_[static_cast<std::size_t>(award.winners[i])];
            winner.chips += award.shares[i];
            award.names.push_back(winner.name);
        }
        TableEvent won = TableEvent::of(TableEvent::Kind::PotWon);
        won.award = std::move(award);
        emit(std::move(won));
    }
    for (TableSeat& s : seats_) {
        s.committed = 0;
        s.streetBet = 0;
    }
    street_ = Street::Idle;
    toAct_ = -1;
    emit(TableEvent::of(TableEvent::Kind::HandEnded));
    for (int index = 0; index < seatCount(); ++index) {
        TableSeat& s = seats_[static_cast<std::size_t>(index)];
        s.dealtIn = s.folded = s.allIn = s.acted = false;
        if (s.occupied && (s.leaving || s.chips == 0)) {
            TableEvent gone = TableEvent::of(TableEvent::Kind::SeatEmptied, index);
            gone.amount = s.chips;
            gone.name = s.name;
            s = TableSeat{};
            emit(std::move(gone));
        }
    }
}

long long HoldemTable::totalChips() const {
    long long total = 0;
    for (const TableSeat& s : seats_) {
        total += s.chips + s.committed;
    }
    return total;
}

std::vector<TableEvent> HoldemTable::takeEvents() {
    return std::exchange(events_, {});
}

}  // namespace tavren::holdem
