#include <gtest/gtest.h>

#include "holdem/HoldemTable.h"
#include "tests/holdem/TableTestSupport.h"

namespace tavren::holdem {
namespace {

using test::HandRecord;
using test::StackedDeck;
using K = TableEvent::Kind;

// Card numbers: spades 1..13, clubs 14..26, diamonds 27..39, hearts 40..52 (ace first).
constexpr int As = 1, Ac = 14, Ks = 13, Kc = 26, Qs = 12, Qc = 25;
constexpr int Two_s = 2, Seven_d = 33, Nine_c = 22, Jack_h = 50, Four_d = 30;
constexpr int Three_c = 16, Eight_h = 47;

HandRecord Record(HoldemTable& table, HandRecord record = {}) {
    for (const TableEvent& e : table.takeEvents()) {
        record.add(e);
    }
    return record;
}

HoldemTable TableWith(std::vector<int> stacks, TableRules rules = {}) {
    rules.seats = std::max<int>(rules.seats, static_cast<int>(stacks.size()));
    HoldemTable table(rules);
    for (std::size_t i = 0; i < stacks.size(); ++i) {
        table.sit("p" + std::to_string(i), stacks[i]);
    }
    return table;
}

TEST(HoldemTableTest, ThreeAllInsOfDifferentSizesMakeTwoSidePots) {
    HoldemTable table = TableWith({100, 300, 600, 1000});
    // Button 0, blinds 1 and 2, seat 3 first. Aces beat kings beat queens beat eight high.
    ASSERT_TRUE(table.startHand(StackedDeck({{Kc, Ks}, {Qc, Qs}, {Three_c, Eight_h}, {Ac, As}},
                                            {Two_s, Seven_d, Nine_c, Jack_h, Four_d})));
    HandRecord hand = Record(table);
    EXPECT_EQ(table.toAct(), 3);
    EXPECT_TRUE(table.act(3, {ActionKind::AllIn}).accepted);
    EXPECT_TRUE(table.act(0, {ActionKind::AllIn}).accepted);
    EXPECT_TRUE(table.act(1, {ActionKind::AllIn}).accepted);
    EXPECT_TRUE(table.act(2, {ActionKind::AllIn}).accepted);
    hand = Record(table, hand);
    ASSERT_TRUE(hand.ended);
    EXPECT_EQ(hand.returned[3], 400);  // nobody matched seat 3's last 400
    EXPECT_EQ(hand.won[0], 400);       // main pot: 4 x 100
    EXPECT_EQ(hand.won[1], 600);       // first side pot: 3 x 200
    EXPECT_EQ(hand.won[2], 600);       // second side pot: 2 x 300
    EXPECT_EQ(hand.won.count(3), 0u);
    EXPECT_EQ(table.seat(3).chips, 400);
    EXPECT_EQ(table.totalChips(), 2000);
    EXPECT_EQ(table.occupiedSeats(), 4);
    const auto reference = test::ReferenceSettlement(hand, table.seatCount());
    EXPECT_EQ(reference.won, hand.won);
}

TEST(HoldemTableTest, SplitPotGivesTheOddChipToTheFirstWinnerAfterTheButton) {
    HoldemTable table = TableWith({1000, 1000, 1000});
    // Broadway on the board: every hand still in plays it.
    ASSERT_TRUE(table.startHand(StackedDeck({{43, 44}, {19, 20}, {15, 29}}, {10, 24, 38, 52, 1})));
    HandRecord hand = Record(table);
    EXPECT_TRUE(table.act(0, {ActionKind::Call}).accepted);
    EXPECT_TRUE(table.act(1, {ActionKind::Fold}).accepted);
    EXPECT_TRUE(table.act(2, {ActionKind::Check}).accepted);
    for (int street = 0; street < 3; ++street) {
        EXPECT_EQ(table.toAct(), 2);
        EXPECT_TRUE(table.act(2, {ActionKind::Check}).accepted);
        EXPECT_TRUE(table.act(0, {ActionKind::Check}).accepted);
    }
    hand = Record(table, hand);
    ASSERT_TRUE(hand.ended);
    EXPECT_EQ(hand.won[2], 13);  // 25 chips: seat 2 comes first after the button
    EXPECT_EQ(hand.won[0], 12);
    EXPECT_EQ(table.seat(0).chips, 1002);
    EXPECT_EQ(table.seat(1).chips, 995);
    EXPECT_EQ(table.seat(2).chips, 1003);
    EXPECT_EQ(hand.shown, (std::vector<int>{2, 0}));
}

TEST(HoldemTableTest, HeadsUpTheButtonPostsTheSmallBlindAndActsFirstOnlyBeforeTheFlop) {
    HoldemTable table = TableWith({500, 500});
    ASSERT_TRUE(table.startHand(OrderedDeck()));
    HandRecord hand = Record(table);
    EXPECT_EQ(hand.button, 0);
    EXPECT_EQ(hand.committed[0], 5);
    EXPECT_EQ(hand.committed[1], 10);
    EXPECT_EQ(table.toAct(), 0);
    EXPECT_TRUE(table.act(0, {ActionKind::Call}).accepted);
    EXPECT_EQ(table.toAct(), 1);  // the big blind's option
    EXPECT_TRUE(table.act(1, {ActionKind::Check}).accepted);
    EXPECT_EQ(table.street(), Street::Flop);
    EXPECT_EQ(table.toAct(), 1);  // after the flop the big blind speaks first
    EXPECT_TRUE(table.act(1, {ActionKind::Raise, 10}).accepted);
    EXPECT_TRUE(table.act(0, {ActionKind::Fold}).accepted);
    EXPECT_FALSE(table.handInProgress());
    Record(table);
    ASSERT_TRUE(table.startHand(OrderedDeck()));
    hand = Record(table);
    EXPECT_EQ(hand.button, 1);
    EXPECT_EQ(hand.committed[1], 5);
    EXPECT_EQ(hand.committed[0], 10);
    EXPECT_EQ(table.toAct(), 1);
}

TEST(HoldemTableTest, RaisesMustBeAtLeastTheLastRaiseAndShortAllInsDoNotReopenTheBetting) {
    HoldemTable table = TableWith({1000, 1000, 1000, 150});
    ASSERT_TRUE(table.startHand(OrderedDeck()));
    Record(table);
    // Seat 3 is first (button 0, blinds 1 and 2).
    EXPECT_EQ(table.act(3, {ActionKind::Raise, 15}).refusal, "The smallest raise is to 20.");
    EXPECT_EQ(table.act(0, {ActionKind::Call}).refusal, "It is not your turn.");
    EXPECT_TRUE(table.act(3, {ActionKind::Fold}).accepted);
    EXPECT_TRUE(table.act(0, {ActionKind::Raise, 100}).accepted);  // a raise of 90
    EXPECT_EQ(table.minRaiseTo(1), 190);
    EXPECT_FALSE(table.act(1, {ActionKind::Raise, 189}).accepted);
    EXPECT_TRUE(table.act(1, {ActionKind::Call}).accepted);
    EXPECT_TRUE(table.act(2, {ActionKind::Call}).accepted);
    EXPECT_EQ(table.street(), Street::Flop);
    Record(table);

    HoldemTable shortStack = TableWith({1000, 1000, 1000, 150});
    ASSERT_TRUE(shortStack.startHand(OrderedDeck()));
    EXPECT_TRUE(shortStack.act(3, {ActionKind::Call}).accepted);
    EXPECT_TRUE(shortStack.act(0, {ActionKind::Raise, 100}).accepted);
    EXPECT_TRUE(shortStack.act(1, {ActionKind::Fold}).accepted);
    EXPECT_TRUE(shortStack.act(2, {ActionKind::Call}).accepted);
    EXPECT_TRUE(shortStack.act(3, {ActionKind::AllIn}).accepted);  // 150: 50 short of a raise
    EXPECT_EQ(shortStack.currentBet(), 150);
    EXPECT_EQ(shortStack.toAct(), 0);
    EXPECT_FALSE(shortStack.canRaise(0));  // seat 0 acted and faces less than a full raise
    EXPECT_EQ(shortStack.act(0, {ActionKind::Raise, 300}).refusal, "You cannot raise now.");
    EXPECT_TRUE(shortStack.act(0, {ActionKind::Call}).accepted);
    EXPECT_FALSE(shortStack.canRaise(2));
    EXPECT_TRUE(shortStack.act(2, {ActionKind::Call}).accepted);
}

TEST(HoldemTableTest, ATimeOutChecksWhenFreeAndFoldsFacingABet) {
    HoldemTable table = TableWith({1000, 1000, 1000});
    ASSERT_TRUE(table.startHand(OrderedDeck()));
    Record(table);
    table.timeOut();  // seat 0 faces the big blind
    auto events = table.takeEvents();
    ASSERT_FALSE(events.empty());
    EXPECT_EQ(events[0].kind, K::Acted);
    EXPECT_EQ(events[0].action, ActionKind::Fold);
    EXPECT_TRUE(events[0].timedOut);
    EXPECT_TRUE(table.act(1, {ActionKind::Call}).accepted);
    Record(table);
    table.timeOut();  // the big blind may check
    events = table.takeEvents();
    EXPECT_EQ(events[0].action, ActionKind::Check);
    EXPECT_TRUE(events[0].timedOut);
    EXPECT_EQ(table.street(), Street::Flop);

    // The player who timed out is dealt the next hand and plays it.
    while (table.handInProgress()) {
        table.timeOut();
    }
    Record(table);
    ASSERT_TRUE(table.startHand(OrderedDeck()));
    Record(table);
    EXPECT_TRUE(table.seat(0).dealtIn);
    EXPECT_EQ(table.toAct(), 1);  // button 1, blinds 2 and 0
    EXPECT_TRUE(table.act(1, {ActionKind::Call}).accepted);
    EXPECT_TRUE(table.act(2, {ActionKind::Call}).accepted);
    EXPECT_TRUE(table.act(0, {ActionKind::Raise, 40}).accepted);
}

TEST(HoldemTableTest, APlayerLeavingMidHandFoldsOnTurnAndTakesTheChipsAtTheEnd) {
    HoldemTable table = TableWith({1000, 1000, 1000});
    ASSERT_TRUE(table.startHand(OrderedDeck()));
    Record(table);
    table.leave(2);  // the big blind, not its turn yet
    EXPECT_TRUE(table.seat(2).occupied);
    EXPECT_TRUE(table.act(0, {ActionKind::Call}).accepted);
    EXPECT_TRUE(table.act(1, {ActionKind::Call}).accepted);
    HandRecord hand = Record(table);
    EXPECT_TRUE(hand.folded[2]);
    EXPECT_EQ(table.street(), Street::Flop);
    while (table.handInProgress()) {
        table.timeOut();
    }
    bool emptied = false;
    for (const TableEvent& e : table.takeEvents()) {
        if (e.kind == K::SeatEmptied) {
            emptied = true;
            EXPECT_EQ(e.name, "p2");
            EXPECT_EQ(e.amount, 990);
        }
    }
    EXPECT_TRUE(emptied);
    EXPECT_FALSE(table.seat(2).occupied);
    EXPECT_EQ(table.totalChips(), 2010);
}

TEST(HoldemTableTest, ALosingHandIsMuckedUnseenAfterTheWinnerShows) {
    HoldemTable table = TableWith({1000, 1000});
    // Seat 1 (dealt first) gets kings, seat 0 eight high.
    ASSERT_TRUE(table.startHand(
        StackedDeck({{Kc, Ks}, {Three_c, Eight_h}}, {Two_s, Seven_d, Nine_c, Jack_h, Four_d})));
    Record(table);
    EXPECT_TRUE(table.act(0, {ActionKind::Call}).accepted);
    EXPECT_TRUE(table.act(1, {ActionKind::Check}).accepted);
    EXPECT_TRUE(table.act(1, {ActionKind::Check}).accepted);
    EXPECT_TRUE(table.act(0, {ActionKind::Check}).accepted);
    EXPECT_TRUE(table.act(1, {ActionKind::Check}).accepted);
    EXPECT_TRUE(table.act(0, {ActionKind::Check}).accepted);
    EXPECT_TRUE(table.act(1, {ActionKind::Raise, 50}).accepted);
    EXPECT_TRUE(table.act(0, {ActionKind::Call}).accepted);
    const HandRecord hand = Record(table);
    EXPECT_EQ(hand.shown, std::vector<int>{1});   // the river's bettor shows first
    EXPECT_EQ(hand.mucked, std::vector<int>{0});  // eight high cannot beat kings
    EXPECT_EQ(hand.won.at(1), 120);
}

TEST(HoldemTableTest, PotsInPlayCloseOnlyAtAllInLevels) {
    HoldemTable table = TableWith({1000, 1000, 100});
    ASSERT_TRUE(table.startHand(OrderedDeck()));
    Record(table);
    EXPECT_TRUE(table.act(0, {ActionKind::Raise, 300}).accepted);
    // Blinds and a raise nobody has matched yet: still one pot.
    ASSERT_EQ(table.pots().size(), 1u);
    EXPECT_EQ(table.pots()[0].amount, 315);
    EXPECT_TRUE(table.act(1, {ActionKind::Call}).accepted);
    EXPECT_TRUE(table.act(2, {ActionKind::AllIn}).accepted);
    EXPECT_EQ(table.street(), Street::Flop);
    const auto pots = table.pots();
    ASSERT_EQ(pots.size(), 2u);
    EXPECT_EQ(pots[0].amount, 300);
    EXPECT_EQ(pots[0].eligible, (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(pots[1].amount, 400);
    EXPECT_EQ(pots[1].eligible, (std::vector<int>{0, 1}));
}

TEST(HoldemTableTest, RefusesBadSeatsDecksAndNames) {
    HoldemTable table = TableWith({1000});
    EXPECT_FALSE(table.canStartHand());
    EXPECT_FALSE(table.startHand(OrderedDeck()));
    EXPECT_FALSE(table.sit("P0", 100));  // same name in other letters
    EXPECT_FALSE(table.sit("x", 0));
    EXPECT_TRUE(table.sit("x", 10));
    Deck broken = OrderedDeck();
    broken[5] = broken[6];
    EXPECT_FALSE(table.startHand(broken));
    EXPECT_EQ(table.act(0, {ActionKind::Check}).refusal, "No hand is being played.");
    TableRules tiny;
    tiny.seats = 2;
    HoldemTable two(tiny);
    EXPECT_TRUE(two.sit("a", 5));
    EXPECT_TRUE(two.sit("b", 5));
    EXPECT_FALSE(two.sit("c", 5));
    EXPECT_FALSE((TableRules{.seats = 11}).valid());
    EXPECT_FALSE((TableRules{.seats = 4, .smallBlind = 20, .bigBlind = 10}).valid());
    EXPECT_TRUE((TableRules{.seats = 4, .smallBlind = 5, .bigBlind = 10, .buyIn = 20}).valid());
}

}  // namespace
}  // namespace tavren::holdem
