#include "holdem/HandEvaluator.h"

#include <algorithm>
#include <bit>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <vector>

#include "holdem/HandRules.h"

namespace tavren::holdem {

namespace {

using hand_layout::kLowRanks;
constexpr int kRanks = 13;
constexpr int kHighRanks = kRanks - kLowRanks;
constexpr int kMaxCards = 7;
constexpr int kMaxOfOneRank = 4;

// Index ranges cover every value an index can take, so even a Hand that breaks the evaluator's
// precondition reads inside the tables.
using Tables = HandEvaluator::Tables;
constexpr std::size_t kLowKeys = Tables::kLowKeys;
constexpr std::size_t kHighKeys = Tables::kHighKeys;
constexpr std::size_t kFlushMasks = Tables::kFlushMasks;

// One half's rank pattern: its card counts and its rank-key sum.
struct HalfPattern {
    std::vector<std::uint8_t> counts;
    int cards = 0;
    std::uint32_t key = 0;
};

// Every pattern of up to seven cards over `ranks` ranks, at most four of a rank.
void CollectPatterns(int ranks, std::vector<HalfPattern>& out, HalfPattern& current, int rank) {
    if (rank == ranks) {
        out.push_back(current);
        return;
    }
    for (int count = 0; count <= kMaxOfOneRank && current.cards + count <= kMaxCards; ++count) {
        current.counts[static_cast<std::size_t>(rank)] = static_cast<std::uint8_t>(count);
        current.cards += count;
        current.key += static_cast<std::uint32_t>(count) *
                       hand_layout::kRankKeys[static_cast<std::size_t>(rank)];
        CollectPatterns(ranks, out, current, rank + 1);
        current.cards -= count;
        current.key -= static_cast<std::uint32_t>(count) *
                       hand_layout::kRankKeys[static_cast<std::size_t>(rank)];
    }
    current.counts[static_cast<std::size_t>(rank)] = 0;
}

std::vector<HalfPattern> PatternsOver(int ranks) {
    std::vector<HalfPattern> patterns;
    HalfPattern current;
    current.counts.assign(static_cast<std::size_t>(ranks), 0);
    CollectPatterns(ranks, patterns, current, 0);
    return patterns;
}

void ClaimKey(std::vector<bool>& taken, std::uint32_t key) {
    if (key >= taken.size() || taken[key]) {
        throw std::logic_error("hand evaluator: rank keys do not separate the rank patterns");
    }
    taken[key] = true;
}

// The evaluator's tables. The dense table is laid out in rows, one per low-half pattern L; a row
// holds the high-half patterns H with |L| + |H| <= 7. Numbering the high patterns by card count
// (all empty, then all single cards, ...) makes those exactly the first columns, so a row is
// as long as it must be and every pattern of up to seven cards has exactly one cell.
void BuildTables(Tables& tables) {
    const std::vector<HalfPattern> lows = PatternsOver(kLowRanks);
    std::vector<HalfPattern> highs = PatternsOver(kHighRanks);
    std::stable_sort(highs.begin(), highs.end(),
                     [](const HalfPattern& a, const HalfPattern& b) { return a.cards < b.cards; });
    std::fill(std::begin(tables.lowRowStart), std::end(tables.lowRowStart), 0);
    std::fill(std::begin(tables.highColumn), std::end(tables.highColumn), 0);
    std::fill(std::begin(tables.flush), std::end(tables.flush), 0);
    std::fill(std::begin(tables.values), std::end(tables.values), 0);

    // columnsUpTo[n] = number of high patterns with at most n cards.
    std::vector<std::uint32_t> columnsUpTo(kMaxCards + 1, 0);
    std::vector<bool> highTaken(kHighKeys, false);
    for (std::size_t column = 0; column < highs.size(); ++column) {
        const HalfPattern& high = highs[column];
        ClaimKey(highTaken, high.key);
        tables.highColumn[high.key] = static_cast<std::uint16_t>(column);
        for (int n = high.cards; n <= kMaxCards; ++n) {
            ++columnsUpTo[static_cast<std::size_t>(n)];
        }
    }

    std::vector<bool> lowTaken(kLowKeys, false);
    std::uint32_t rowStart = 0;
    for (const HalfPattern& low : lows) {
        ClaimKey(lowTaken, low.key);
        tables.lowRowStart[low.key] = rowStart;
        rowStart += columnsUpTo[static_cast<std::size_t>(kMaxCards - low.cards)];
    }
    // Room for the largest row start plus the largest column, for out-of-contract keys.
    if (rowStart + highs.size() != Tables::kValueCells) {
        throw std::logic_error("hand evaluator: the value table is not the size it was built for");
    }

    RankCounts counts{};
    for (const HalfPattern& low : lows) {
        for (const HalfPattern& high : highs) {
            if (low.cards + high.cards > kMaxCards) {
                break;  // sorted by card count: the rest of the row is longer still
            }
            for (int rank = 0; rank < kRanks; ++rank) {
                const std::size_t at = static_cast<std::size_t>(rank);
                counts[at] = rank < kLowRanks ? low.counts[at] : high.counts[at - kLowRanks];
            }
            tables.values[tables.lowRowStart[low.key] + tables.highColumn[high.key]] =
                ValueOfRanks(counts).bits();
        }
    }

    // Indexed by one suit's 13 cards, ace first; ValueOfFlush takes them two first, ace last.
    for (std::uint32_t lane = 0; lane < kFlushMasks; ++lane) {
        if (std::popcount(lane) >= 5) {
            const std::uint32_t ranks = (lane >> 1) | ((lane & 1) << (kRanks - 1));
            tables.flush[lane] = ValueOfFlush(ranks).bits();
        }
    }
}

const Tables& SharedTables() {
    static const std::unique_ptr<Tables> tables = [] {
        auto made = std::make_unique<Tables>();
        BuildTables(*made);
        return made;
    }();
    return *tables;
}

}  // namespace

HandEvaluator::HandEvaluator() : tables_(&SharedTables()) {}

std::size_t HandEvaluator::tableBytes() {
    return sizeof(Tables);
}

}  // namespace tavren::holdem
