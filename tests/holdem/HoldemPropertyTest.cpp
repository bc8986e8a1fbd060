#include <gtest/gtest.h>

#include <random>

#include "holdem/HoldemTable.h"
#include "tests/holdem/TableTestSupport.h"

namespace tavren::holdem {
namespace {

// Random bots play many thousands of hands at random tables (2..10 seats, random blinds, stacks
// from a few chips to deep), sitting out, leaving and timing out as they go. After every move:
// no chip is made or lost; a move out of turn, and a raise one chip short of the minimum, are
// refused and change nothing; and every hand pays exactly what a plain settlement pays.
class Bots {
  public:
    explicit Bots(std::uint64_t seed) : rng_(seed) {}

    int below(int n) { return std::uniform_int_distribution<int>(0, n - 1)(rng_); }
    int between(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng_); }

    Action randomAction(const HoldemTable& table, int seat) {
        switch (below(6)) {
            case 0:
                return {ActionKind::Fold};
            case 1:
                return {ActionKind::Check};
            case 2:
                return {ActionKind::Call};
            case 3:
                return {ActionKind::AllIn};
            default: {
                const int lo = std::max(1, table.minRaiseTo(seat));
                const int hi = std::max(lo, table.maxRaiseTo(seat));
                return {ActionKind::Raise, between(lo, hi)};
            }
        }
    }

    Deck deck() {
        return ShuffledDeck([this](std::uint32_t n) {
            return std::uniform_int_distribution<std::uint32_t>(0, n - 1)(rng_);
        });
    }

  private:
    std::mt19937_64 rng_;
};

struct Totals {
    long long initial = 0;
    long long gone = 0;  // chips that left with players
};

void Absorb(std::vector<TableEvent> events, test::HandRecord& hand, Totals& totals) {
    for (const TableEvent& e : events) {
        hand.add(e);
        if (e.kind == TableEvent::Kind::SeatEmptied) {
            totals.gone += e.amount;
        }
    }
}

TEST(HoldemPropertyTest, RandomBotsConserveChipsAndArePaidAsAPlainSettlementPays) {
    Bots bots(20261123);
    int hands = 0;
    int sidePotHands = 0;
    int splitHands = 0;
    for (int tableNo = 0; tableNo < 2000; ++tableNo) {
        TableRules rules;
        rules.seats = bots.between(2, 10);
        rules.bigBlind = bots.between(2, 40);
        rules.smallBlind = bots.between(1, rules.bigBlind);
        rules.buyIn = rules.bigBlind * bots.between(2, 100);
        HoldemTable table(rules);
        Totals totals;
        const int players = bots.between(2, rules.seats);
        for (int p = 0; p < players; ++p) {
            const int chips = bots.below(4) == 0 ? bots.between(1, rules.bigBlind * 2)
                                                 : bots.between(1, rules.buyIn * 2);
            ASSERT_TRUE(table.sit("bot" + std::to_string(p), chips));
            totals.initial += chips;
        }
        for (int handNo = 0; handNo < 12 && table.canStartHand(); ++handNo) {
            test::HandRecord hand;
            ASSERT_TRUE(table.startHand(bots.deck()));
            Absorb(table.takeEvents(), hand, totals);
            int moves = 0;
            while (table.handInProgress()) {
                ASSERT_LT(++moves, 500) << "a hand that never ends";
                const int seat = table.toAct();
                ASSERT_GE(seat, 0);
                const long long before = table.totalChips();

                const int other =
                    (seat + 1 + bots.below(table.seatCount() - 1)) % table.seatCount();
                const auto outOfTurn = table.act(other, bots.randomAction(table, other));
                ASSERT_FALSE(outOfTurn.accepted);
                ASSERT_TRUE(table.takeEvents().empty());

                if (table.canRaise(seat)) {
                    const int least = table.minRaiseTo(seat);
                    ASSERT_GT(least, table.currentBet());
                    if (least < table.maxRaiseTo(seat) && least - 1 > table.currentBet()) {
                        ASSERT_FALSE(table.act(seat, {ActionKind::Raise, least - 1}).accepted);
                        ASSERT_TRUE(table.takeEvents().empty());
                    }
                } else {
                    ASSERT_FALSE(
                        table.act(seat, {ActionKind::Raise, table.maxRaiseTo(seat) + 1}).accepted);
                }

                const int roll = bots.below(40);
                if (roll == 0) {
                    table.timeOut();
                } else if (roll == 1) {
                    table.leave(seat);
                } else {
                    const auto outcome = table.act(seat, bots.randomAction(table, seat));
                    if (!outcome.accepted) {
                        ASSERT_FALSE(outcome.refusal.empty());
                        ASSERT_EQ(table.toAct(), seat);
                        ASSERT_TRUE(table.takeEvents().empty());
                        continue;
                    }
                }
                Absorb(table.takeEvents(), hand, totals);
                ASSERT_EQ(table.totalChips() + totals.gone, totals.initial);
                ASSERT_LE(table.totalChips(), before);
            }
            ASSERT_TRUE(hand.ended);
            const auto reference = test::ReferenceSettlement(hand, table.seatCount());
            for (auto& [seat, chips] : hand.won) {
                ASSERT_EQ(chips, reference.won.count(seat) ? reference.won.at(seat) : 0)
                    << "table " << tableNo << " hand " << handNo << " seat " << seat;
            }
            for (auto& [seat, chips] : reference.won) {
                ASSERT_EQ(chips, hand.won.count(seat) ? hand.won.at(seat) : 0);
            }
            for (auto& [seat, chips] : hand.returned) {
                ASSERT_EQ(chips, reference.returned.at(seat));
            }
            // A mucked hand is never one that wins.
            for (int seat : hand.mucked) {
                ASSERT_EQ(hand.won.count(seat), 0u);
            }
            ++hands;
            std::map<int, int> stakes;
            for (auto& [seat, chips] : hand.committed) {
                if (!hand.folded[seat])
                    stakes[chips]++;
            }
            sidePotHands += stakes.size() > 1 ? 1 : 0;
            int winners = 0;
            for (auto& [seat, chips] : hand.won)
                winners += chips > 0;
            splitHands += winners > 1 ? 1 : 0;
            // Now and then a player sits out, comes back, or a new one sits down.
            const int seatNo = bots.below(table.seatCount());
            if (bots.below(8) == 0 && table.seat(seatNo).occupied) {
                table.setSittingOut(seatNo, !table.seat(seatNo).sittingOut);
            }
            if (bots.below(6) == 0) {
                const int chips = bots.between(1, rules.buyIn);
                if (table.sit("late" + std::to_string(handNo), chips)) {
                    totals.initial += chips;
                }
            }
            ASSERT_EQ(table.totalChips() + totals.gone, totals.initial);
        }
    }
    EXPECT_GT(hands, 10000);
    EXPECT_GT(sidePotHands, 200);  // the bots reach side pots often enough to matter
    EXPECT_GT(splitHands, 20);
}

}  // namespace
}  // namespace tavren::holdem
