#pragma once

// A deliberately plain hand ranker to check the table evaluator against: it shares no code with
// it (no rank keys, no tables, not even the rank-pattern rules) and does everything the obvious
// way, five cards at a time, then tries every five-card subset of a larger hand.

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <utility>

namespace tavren::holdem::test {

// Same layout as HandValue: category << 20, then the significant ranks, four bits each.
inline std::uint32_t RankFiveCards(std::span<const int, 5> cards) {
    std::array<int, 5> ranks{};
    std::array<int, 5> suits{};
    for (std::size_t i = 0; i < 5; ++i) {
        const int face = cards[i] % 13 == 0 ? 13 : cards[i] % 13;
        ranks[i] = face == 1 ? 14 : face;
        suits[i] = (cards[i] - 1) / 13;
    }
    std::sort(ranks.begin(), ranks.end(), std::greater<>());
    const bool flush =
        std::all_of(suits.begin(), suits.end(), [&](int s) { return s == suits[0]; });

    bool distinct = true;
    for (std::size_t i = 1; i < 5; ++i) {
        distinct = distinct && ranks[i] != ranks[i - 1];
    }
    int straightTop = 0;
    if (distinct && ranks[0] - ranks[4] == 4) {
        straightTop = ranks[0];
    } else if (distinct && ranks[0] == 14 && ranks[1] == 5) {
        straightTop = 5;  // A-5-4-3-2
    }

    // (count, rank) groups, biggest group first, higher rank first among equals.
    std::array<std::pair<int, int>, 5> groups{};
    std::size_t groupCount = 0;
    for (int rank : ranks) {
        if (groupCount > 0 && groups[groupCount - 1].second == rank) {
            ++groups[groupCount - 1].first;
        } else {
            groups[groupCount++] = {1, rank};
        }
    }
    std::stable_sort(groups.begin(), groups.begin() + static_cast<std::ptrdiff_t>(groupCount),
                     [](const auto& a, const auto& b) { return a.first > b.first; });

    int category = 0;
    if (straightTop != 0 && flush) {
        category = 9;
    } else if (groups[0].first == 4) {
        category = 8;
    } else if (groups[0].first == 3 && groups[1].first == 2) {
        category = 7;
    } else if (flush) {
        category = 6;
    } else if (straightTop != 0) {
        category = 5;
    } else if (groups[0].first == 3) {
        category = 4;
    } else if (groups[0].first == 2 && groups[1].first == 2) {
        category = 3;
    } else if (groups[0].first == 2) {
        category = 2;
    } else {
        category = 1;
    }

    // The ranks that decide ties, most significant first: the groups in order, or the top card
    // of a straight.
    std::array<int, 5> significant{};
    if (straightTop != 0) {
        significant[0] = straightTop;
    } else {
        for (std::size_t i = 0; i < groupCount; ++i) {
            significant[i] = groups[i].second;
        }
    }
    std::uint32_t value = static_cast<std::uint32_t>(category);
    for (int rank : significant) {
        value = (value << 4) | static_cast<std::uint32_t>(rank);
    }
    return value;
}

// Best of every five-card subset (21 of them for seven cards). Needs at least five cards.
inline std::uint32_t RankBestOfSubsets(std::span<const int> cards) {
    std::uint32_t best = 0;
    const std::size_t n = cards.size();
    std::array<int, 5> pick{};
    for (std::size_t a = 0; a < n; ++a) {
        for (std::size_t b = a + 1; b < n; ++b) {
            for (std::size_t c = b + 1; c < n; ++c) {
                for (std::size_t d = c + 1; d < n; ++d) {
                    for (std::size_t e = d + 1; e < n; ++e) {
                        pick = {cards[a], cards[b], cards[c], cards[d], cards[e]};
                        best = std::max(best, RankFiveCards(pick));
                    }
                }
            }
        }
    }
    return best;
}

}  // namespace tavren::holdem::test
