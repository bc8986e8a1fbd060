#include "server/holdem/TableFrames.h"

#include <algorithm>
#include <cctype>

namespace tavren::server::table_frames {

namespace {

const char kField = '\x01';
const char kRecord = '\x02';

std::string Lower(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower;
}

std::string_view StreetWord(holdem::Street street) {
    switch (street) {
        case holdem::Street::Preflop:
            return "preflop";
        case holdem::Street::Flop:
            return "flop";
        case holdem::Street::Turn:
            return "turn";
        case holdem::Street::River:
            return "river";
        case holdem::Street::Showdown:
            return "showdown";
        case holdem::Street::Idle:
            break;
    }
    return "waiting";
}

std::string_view SeatState(const holdem::TableSeat& seat) {
    if (seat.dealtIn) {
        return seat.folded ? "folded" : seat.allIn ? "allin" : "in";
    }
    return seat.sittingOut ? "out" : "waiting";
}

template <typename Numbers>
std::string CommaList(const Numbers& numbers) {
    std::string text;
    for (const auto& number : numbers) {
        if (!text.empty()) {
            text += ',';
        }
        text += std::to_string(number);
    }
    return text;
}

}  // namespace

std::string TableList(std::span<const GameTable* const> tables) {
    std::string payload;
    for (const GameTable* table : tables) {
        if (!payload.empty()) {
            payload += kRecord;
        }
        const auto& rules = table->game.rules();
        payload += table->name + kField + std::to_string(table->game.occupiedSeats()) + kField +
                   std::to_string(rules.seats) + kField + std::to_string(rules.smallBlind) +
                   kField + std::to_string(rules.bigBlind) + kField + std::to_string(rules.buyIn) +
                   kField + (table->password.empty() ? "False" : "True") + kField +
                   (table->game.handInProgress() ? "Playing" : "Waiting");
    }
    return payload;
}

std::string Seated(const GameTable& table, int seat, int turnSeconds) {
    const auto& rules = table.game.rules();
    return table.name + ';' + std::to_string(seat) + ';' + std::to_string(rules.seats) + ';' +
           std::to_string(rules.smallBlind) + ';' + std::to_string(rules.bigBlind) + ';' +
           std::to_string(rules.buyIn) + ';' + std::to_string(turnSeconds);
}

std::string Snapshot(const GameTable& table, std::string_view viewer, int secondsLeft) {
    const holdem::HoldemTable& game = table.game;
    std::array<int, 5> board{};
    std::copy(game.board().begin(), game.board().end(), board.begin());
    std::vector<int> pots;
    for (const holdem::Pot& pot : game.pots()) {
        pots.push_back(pot.amount);
    }
    std::string payload = table.name + ';' + std::to_string(game.handNumber()) + ';' +
                          std::string(StreetWord(game.street())) + ';' +
                          std::to_string(game.button()) + ';' + std::to_string(game.toAct()) + ';' +
                          std::to_string(game.toAct() >= 0 ? secondsLeft : 0) + ';' +
                          CommaList(board) + ';' + CommaList(pots) + ';';
    bool first = true;
    for (int index = 0; index < game.seatCount(); ++index) {
        const holdem::TableSeat& seat = game.seat(index);
        if (!seat.occupied) {
            continue;
        }
        if (!first) {
            payload += kRecord;
        }
        first = false;
        const bool own = Lower(seat.name) == viewer;
        const bool visible = seat.dealtIn && (own || seat.shown);
        const bool away = table.away.count(Lower(seat.name)) > 0;
        payload += std::to_string(index) + kField + seat.name + kField +
                   std::to_string(seat.chips) + kField + std::to_string(seat.streetBet) + kField +
                   std::string(SeatState(seat)) + kField + (away ? "True" : "False") + kField +
                   std::to_string(visible ? seat.hole[0] : 0) + kField +
                   std::to_string(visible ? seat.hole[1] : 0);
    }
    return payload;
}

std::string Event(const GameTable& table, std::string_view kind, int seat, std::string_view name,
                  long long amount, long long total, bool timedOut, std::span<const int> cards) {
    return table.name + ';' + std::string(kind) + ';' + std::to_string(seat) + ';' +
           std::string(name) + ';' + std::to_string(amount) + ';' + std::to_string(total) + ';' +
           (timedOut ? "True" : "False") + ';' + CommaList(cards);
}

std::string_view ActionWord(const holdem::TableEvent& acted) {
    switch (acted.action) {
        case holdem::ActionKind::Fold:
            return "fold";
        case holdem::ActionKind::Check:
            return "check";
        case holdem::ActionKind::Call:
            return "call";
        case holdem::ActionKind::Raise:
            return acted.previousBet == 0 ? "bet" : "raise";
        case holdem::ActionKind::AllIn:
            return "allin";
    }
    return "fold";
}

std::string Turn(const GameTable& table, int seat, int seconds) {
    const holdem::HoldemTable& game = table.game;
    return table.name + ';' + std::to_string(game.callAmount(seat)) + ';' +
           std::to_string(game.minRaiseTo(seat)) + ';' +
           std::to_string(game.canRaise(seat) ? game.maxRaiseTo(seat) : 0) + ';' +
           std::to_string(seconds) + ';' + std::to_string(game.currentBet()) + ';' +
           std::to_string(game.seat(seat).streetBet);
}

}  // namespace tavren::server::table_frames
