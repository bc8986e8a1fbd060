#include "holdem/Pots.h"

#include <algorithm>

namespace tavren::holdem {

Uncalled UncalledBet(std::span<const int> committed) {
    int top = -1;
    int highest = 0;
    int second = 0;
    for (std::size_t seat = 0; seat < committed.size(); ++seat) {
        const int chips = committed[seat];
        if (chips > highest) {
            second = highest;
            highest = chips;
            top = static_cast<int>(seat);
        } else if (chips > second) {
            second = chips;
        }
    }
    if (top < 0 || highest == second) {
        return {};
    }
    return {top, highest - second};
}

std::vector<Pot> BuildPots(std::span<const int> committed, std::span<const bool> contesting) {
    std::vector<int> levels;
    for (std::size_t seat = 0; seat < committed.size(); ++seat) {
        if (contesting[seat] && committed[seat] > 0) {
            levels.push_back(committed[seat]);
        }
    }
    std::sort(levels.begin(), levels.end());
    levels.erase(std::unique(levels.begin(), levels.end()), levels.end());

    std::vector<Pot> pots;
    int below = 0;
    for (int level : levels) {
        Pot pot;
        for (std::size_t seat = 0; seat < committed.size(); ++seat) {
            pot.amount += std::clamp(committed[seat], below, level) - below;
            if (contesting[seat] && committed[seat] >= level) {
                pot.eligible.push_back(static_cast<int>(seat));
            }
        }
        pots.push_back(std::move(pot));
        below = level;
    }
    int beyond = 0;
    for (int chips : committed) {
        beyond += std::max(0, chips - below);
    }
    if (beyond > 0) {
        if (pots.empty()) {
            // Nobody is left in the hand to win it: cannot happen in a hand, kept safe anyway.
            pots.push_back(Pot{});
        }
        pots.back().amount += beyond;
    }
    return pots;
}

std::vector<PotAward> SettlePots(std::span<const Pot> pots, std::span<const HandValue> values,
                                 int button) {
    const int seats = static_cast<int>(values.size());
    std::vector<PotAward> awards;
    for (std::size_t index = 0; index < pots.size(); ++index) {
        const Pot& pot = pots[index];
        if (pot.eligible.empty() || pot.amount == 0) {
            continue;
        }
        HandValue best;
        for (int seat : pot.eligible) {
            best = std::max(best, values[static_cast<std::size_t>(seat)]);
        }
        PotAward award;
        award.pot = static_cast<int>(index);
        award.amount = pot.amount;
        // Winners in the order the odd chips go round: first seat after the button first.
        for (int step = 1; step <= seats; ++step) {
            const int seat = (button + step) % seats;
            if (std::find(pot.eligible.begin(), pot.eligible.end(), seat) != pot.eligible.end() &&
                values[static_cast<std::size_t>(seat)] == best) {
                award.winners.push_back(seat);
            }
        }
        const int count = static_cast<int>(award.winners.size());
        for (int i = 0; i < count; ++i) {
            award.shares.push_back(pot.amount / count + (i < pot.amount % count ? 1 : 0));
        }
        awards.push_back(std::move(award));
    }
    return awards;
}

}  // namespace tavren::holdem
