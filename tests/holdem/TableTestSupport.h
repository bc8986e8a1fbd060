#pragma once

// Helpers for the table tests: a deck stacked so that chosen seats get chosen cards, and a
// plain settlement to check the table's against.

#include <algorithm>
#include <array>
#include <map>
#include <vector>

#include "holdem/Deck.h"
#include "holdem/TableEvent.h"
#include "holdem/TableRules.h"
#include "tests/holdem/SimpleHandRanker.h"

namespace tavren::holdem::test {

// A deck that deals `holes` (in dealing order: the first seat after the button first) and then
// the board, with a burn card before the flop, the turn and the river. Cards not named fill the
// rest in order.
inline Deck StackedDeck(const std::vector<std::array<int, 2>>& holes,
                        const std::array<int, 5>& board) {
    std::vector<int> order;
    for (std::size_t round = 0; round < 2; ++round) {
        for (const auto& hole : holes) {
            order.push_back(hole[round]);
        }
    }
    std::vector<int> rest;
    for (int card = 1; card <= 52; ++card) {
        const bool named = std::find(board.begin(), board.end(), card) != board.end() ||
                           std::any_of(holes.begin(), holes.end(),
                                       [&](const auto& h) { return h[0] == card || h[1] == card; });
        if (!named) {
            rest.push_back(card);
        }
    }
    std::size_t next = 0;
    order.push_back(rest[next++]);
    order.insert(order.end(), board.begin(), board.begin() + 3);
    order.push_back(rest[next++]);
    order.push_back(board[3]);
    order.push_back(rest[next++]);
    order.push_back(board[4]);
    while (next < rest.size()) {
        order.push_back(rest[next++]);
    }
    Deck deck{};
    std::copy(order.begin(), order.end(), deck.begin());
    return deck;
}

// One hand as its events tell it, and what a plain settlement pays each seat.
struct HandRecord {
    int button = -1;
    std::map<int, int> committed;
    std::map<int, bool> folded;
    std::map<int, std::array<int, 2>> hole;
    std::vector<int> board;
    std::map<int, int> returned;
    std::map<int, int> won;
    std::vector<int> shown;
    std::vector<int> mucked;
    bool ended = false;

    void add(const TableEvent& e) {
        using K = TableEvent::Kind;
        switch (e.kind) {
            case K::HandStarted:
                button = e.seat;
                break;
            case K::BlindPosted:
                committed[e.seat] += e.amount;
                break;
            case K::HoleCards:
                hole[e.seat] = {e.cards.at(0), e.cards.at(1)};
                folded[e.seat] = false;
                break;
            case K::Acted:
                committed[e.seat] += e.amount;
                if (e.action == ActionKind::Fold)
                    folded[e.seat] = true;
                break;
            case K::BoardDealt:
                board.insert(board.end(), e.cards.begin(), e.cards.end());
                break;
            case K::Returned:
                returned[e.seat] += e.amount;
                committed[e.seat] -= e.amount;
                break;
            case K::PotWon:
                for (std::size_t i = 0; i < e.award.winners.size(); ++i)
                    won[e.award.winners[i]] += e.award.shares[i];
                break;
            case K::Shown:
                shown.push_back(e.seat);
                break;
            case K::Mucked:
                mucked.push_back(e.seat);
                break;
            case K::HandEnded:
                ended = true;
                break;
            default:
                break;
        }
    }
};

// The settlement worked out the obvious way: give back the part of the biggest bet nobody
// matched, then peel off the smallest stake still in play again and again, each peel a pot for
// the players who reached it, split between the best hands of those still in, odd chips round
// from the button. Takes everything from the record's committed chips (before any return).
struct ReferenceResult {
    std::map<int, int> returned;
    std::map<int, int> won;
};

inline ReferenceResult ReferenceSettlement(const HandRecord& hand, int seatCount) {
    ReferenceResult result;
    std::map<int, int> left;
    for (const auto& [seat, chips] : hand.committed) {
        left[seat] = chips + (hand.returned.count(seat) ? hand.returned.at(seat) : 0);
    }
    // Uncalled part.
    int top = -1, topChips = 0, second = 0;
    for (const auto& [seat, chips] : left) {
        if (chips > topChips) {
            second = topChips;
            topChips = chips;
            top = seat;
        } else if (chips > second) {
            second = chips;
        }
    }
    if (top >= 0 && topChips > second) {
        result.returned[top] = topChips - second;
        left[top] = second;
    }
    std::vector<int> contenders;
    for (const auto& [seat, isFolded] : hand.folded) {
        if (!isFolded)
            contenders.push_back(seat);
    }
    auto valueOf = [&](int seat) -> std::uint32_t {
        if (contenders.size() == 1)
            return 0;
        std::vector<int> cards = {hand.hole.at(seat)[0], hand.hole.at(seat)[1]};
        cards.insert(cards.end(), hand.board.begin(), hand.board.end());
        return RankBestOfSubsets(cards);
    };
    struct Peel {
        int amount;
        std::vector<int> eligible;
    };
    std::vector<Peel> peels;
    while (true) {
        int smallest = 0;
        for (int seat : contenders) {
            if (left[seat] > 0 && (smallest == 0 || left[seat] < smallest))
                smallest = left[seat];
        }
        if (smallest == 0)
            break;
        Peel peel{0, {}};
        for (int seat : contenders) {
            if (left[seat] > 0)
                peel.eligible.push_back(seat);
        }
        for (auto& [seat, chips] : left) {
            const int take = std::min(chips, smallest);
            peel.amount += take;
            chips -= take;
        }
        peels.push_back(peel);
    }
    for (auto& [seat, chips] : left) {
        if (chips > 0 && !peels.empty()) {
            peels.back().amount += chips;
            chips = 0;
        }
    }
    for (const Peel& peel : peels) {
        std::uint32_t best = 0;
        for (int seat : peel.eligible)
            best = std::max(best, valueOf(seat));
        std::vector<int> winners;
        for (int step = 1; step <= seatCount; ++step) {
            const int seat = (hand.button + step) % seatCount;
            if (std::find(peel.eligible.begin(), peel.eligible.end(), seat) !=
                    peel.eligible.end() &&
                valueOf(seat) == best) {
                winners.push_back(seat);
            }
        }
        const int n = static_cast<int>(winners.size());
        for (int i = 0; i < n; ++i) {
            result.won[winners[static_cast<std::size_t>(i)]] +=
                peel.amount / n + (i < peel.amount % n ? 1 : 0);
        }
    }
    return result;
}

}  // namespace tavren::holdem::test
