// The Hold'em tables against the real server: three members play to a side pot with the chips of
// tables and banks adding up throughout, hole cards reach their owner only, a dropped player keeps
// the seat and plays on after logging in again, and bad requests change nothing.
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "core/protocol/Fields.h"
#include "core/protocol/HoldemCodes.h"
#include "server/support/ServerFixture.h"

namespace tavren::test {
namespace {

namespace game = protocol::holdem_to_client;
using namespace std::chrono_literals;

std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::string part;
    for (char c : text) {
        if (c == separator) {
            parts.push_back(part);
            part.clear();
        } else {
            part += c;
        }
    }
    parts.push_back(part);
    return parts;
}

// One player as the test sees it: every frame it got, its latest bank and view of the table.
struct Player {
    std::string name;
    std::unique_ptr<RawClient> client;
    std::vector<protocol::Frame> frames;
    long long bank = -1;
    std::string snapshot;

    // Reads what has arrived (waiting at most `wait` for the first frame).
    void drain(std::chrono::milliseconds wait = 0ms) {
        while (auto frame = client->next(wait)) {
            wait = 30ms;
            if (frame->code == protocol::server_to_client::kScore) {
                bank = std::stoll(frame->payload);
            } else if (frame->code == game::kTableState) {
                snapshot = frame->payload;
            }
            frames.push_back(*frame);
        }
    }
    // Seat records of the latest snapshot: seat, name, chips, bet, state, away, card, card.
    std::vector<std::vector<std::string>> seats() const {
        const auto fields = Split(snapshot, ';');
        std::vector<std::vector<std::string>> records;
        if (fields.size() < 9 || fields[8].empty()) {
            return records;
        }
        for (const auto& record : Split(fields[8], '\x02')) {
            records.push_back(Split(record, '\x01'));
        }
        return records;
    }
    std::vector<std::string> events(std::string_view kind) const {
        std::vector<std::string> found;
        for (const auto& frame : frames) {
            if (frame.code == game::kTableEvent && Split(frame.payload, ';').at(1) == kind) {
                found.push_back(frame.payload);
            }
        }
        return found;
    }
};

class HoldemServerTest : public ServerFixture {
  protected:
    void SetUp() override {
        addMembers({"alice", "bob", "carol"});
        startServer({"--holdem-turn-time", "1.5", "--holdem-pause", "0.3", "--holdem-away", "60",
                     "--holdem-stake", "1000"});
    }

    Player& join(const std::string& name) {
        players_.push_back(std::make_unique<Player>());
        Player& player = *players_.back();
        player.name = name;
        player.client = member(name);
        player.client->ignore(protocol::server_to_client::kBuddyPresence);
        return player;
    }

    // Serves every player until `done` says so: each prompt to act is answered by `move`.
    void playUntil(const std::function<bool()>& done,
                   const std::function<std::string(Player&, const std::string&)>& move,
                   std::chrono::seconds patience = 30s) {
        const auto until = std::chrono::steady_clock::now() + patience;
        while (!done()) {
            if (std::chrono::steady_clock::now() > until) {
                std::string seen;
                for (const auto& frame : players_.front()->frames) {
                    seen += "(" + std::to_string(frame.code.cmd2) + ") " + frame.payload + "\n";
                }
                FAIL() << "the table stalled; the first player saw:\n" << seen;
            }
            for (auto& player : players_) {
                if (!player->client) {
                    continue;  // dropped
                }
                const std::size_t seen = player->frames.size();
                player->drain(20ms);
                for (std::size_t i = seen; i < player->frames.size(); ++i) {
                    if (player->frames[i].code == game::kYourTurn) {
                        const std::string answer = move(*player, player->frames[i].payload);
                        player->client->send(in::kBettingAction, "Green Felt:" + answer);
                    }
                }
            }
        }
    }

    long long chipsEverywhere() {
        long long total = 0;
        for (auto& player : players_) {
            total += player->bank;
        }
        for (const auto& seat : players_.front()->seats()) {
            total += std::stoll(seat.at(2)) + std::stoll(seat.at(3));
        }
        return total;
    }

    std::vector<std::unique_ptr<Player>> players_;
};

TEST_F(HoldemServerTest, ThreePlayersReachASidePotAndNoChipIsMadeOrLost) {
    Player& alice = join("alice");
    Player& bob = join("bob");
    Player& carol = join("carol");

    alice.client->send(in::kCreateTable, "Green Felt:3:5:10:200:");
    alice.drain(500ms);
    EXPECT_EQ(alice.bank, 800);  // given the stake of 1000, paid the buy-in of 200
    bob.client->send(in::kAskTableList, "Get");
    bob.drain(500ms);
    ASSERT_FALSE(bob.frames.empty());
    EXPECT_EQ(bob.frames.back().code, game::kTableList);
    EXPECT_EQ(bob.frames.back().payload,
              "Green Felt\x01"
              "1\x01"
              "3\x01"
              "5\x01"
              "10\x01"
              "200\x01"
              "False\x01"
              "Waiting");
    bob.client->send(in::kJoinTable, "green felt");
    carol.client->send(in::kJoinTable, "Green Felt");
    bob.drain(300ms);
    carol.drain(300ms);
    ASSERT_FALSE(bob.events("join").empty());

    // Hand 1: the first to act raises, everybody else folds, so the stacks differ.
    bool raised = false;
    playUntil([&] { return !alice.events("end").empty() && !bob.events("end").empty(); },
              [&](Player&, const std::string&) {
                  if (!raised) {
                      raised = true;
                      return std::string("raise:50");
                  }
                  return std::string("fold");
              });
    // Nobody saw anybody else's cards: the hand ended without a showdown.
    for (auto* player : {&alice, &bob, &carol}) {
        for (const auto& frame : player->frames) {
            if (frame.code != game::kTableState)
                continue;
            const auto fields = Split(frame.payload, ';');
            for (const auto& record : Split(fields.at(8), '\x02')) {
                const auto seat = Split(record, '\x01');
                if (seat.at(1) != player->name) {
                    EXPECT_EQ(seat.at(6) + seat.at(7), "00") << frame.payload;
                }
            }
        }
    }
    // Out of turn, and not a move at all.
    alice.client->send(in::kBettingAction, "Green Felt:raise:-5");
    alice.client->send(in::kBettingAction, "Green Felt:dance:5");

    // Hand 2: everybody all in with three different stacks: a main pot and a side pot.
    playUntil([&] { return alice.events("end").size() >= 2; },
              [](Player&, const std::string&) { return std::string("allin"); });
    bool sidePotWon = false;
    long long won = 0;
    for (const auto& win : alice.events("win")) {
        const auto fields = Split(win, ';');
        if (std::stoi(fields.at(5)) >= 1)
            sidePotWon = true;
        won += std::stoll(fields.at(4));
    }
    EXPECT_TRUE(sidePotWon);
    EXPECT_FALSE(alice.events("show").empty());
    // Let the busted players' seats go back to their banks, then count every chip.
    for (int i = 0; i < 10; ++i) {
        for (auto& player : players_)
            player->drain(50ms);
    }
    EXPECT_EQ(chipsEverywhere(), 3000);
    std::vector<std::string> notices;
    for (const auto& frame : alice.frames) {
        if (frame.code == game::kTableNotice)
            notices.push_back(frame.payload);
    }
    EXPECT_FALSE(notices.empty());
}

TEST_F(HoldemServerTest, ADroppedPlayerKeepsTheSeatAndPlaysOnAfterLoggingInAgain) {
    Player& alice = join("alice");
    Player& bob = join("bob");
    alice.client->send(in::kCreateTable, "Green Felt:2:5:10:200:");
    alice.drain(300ms);
    bob.client->send(in::kJoinTable, "Green Felt");
    bob.drain(300ms);
    // Bob's connection drops as the first hand is dealt.
    playUntil([&] { return !alice.events("deal").empty(); },
              [](Player&, const std::string&) { return std::string("call"); });
    bob.client.reset();
    alice.drain(500ms);
    ASSERT_FALSE(alice.events("away").empty());
    // His turns run out on the clock; the hand ends and no new one starts without him.
    playUntil([&] { return !alice.events("end").empty(); },
              [](Player&, const std::string&) { return std::string("check"); });
    bool stillSeated = false;
    for (const auto& seat : alice.seats()) {
        if (seat.at(1) == "bob") {
            stillSeated = true;
            EXPECT_EQ(seat.at(5), "True");  // away
        }
    }
    EXPECT_TRUE(stillSeated);

    bob.client = member("bob");
    bob.client->ignore(protocol::server_to_client::kBuddyPresence);
    bob.frames.clear();
    bob.client->send(in::kJoinTable, "Green Felt");
    bob.drain(500ms);
    ASSERT_FALSE(bob.frames.empty());
    EXPECT_EQ(bob.frames.front().code, game::kSeated);
    // He is dealt in again and makes a move of his own that the table takes.
    bool bobActed = false;
    playUntil([&] { return bobActed && alice.events("end").size() >= 2; },
              [&](Player& player, const std::string& turn) {
                  if (player.name == "bob")
                      bobActed = true;
                  return Split(turn, ';').at(1) == "0" ? std::string("check") : std::string("call");
              });
    bool bobMoved = false;
    for (const auto& e : alice.events("call"))
        bobMoved |= Split(e, ';').at(3) == "bob";
    for (const auto& e : alice.events("check")) {
        const auto f = Split(e, ';');
        bobMoved |= f.at(3) == "bob" && f.at(6) == "False";
    }
    EXPECT_TRUE(bobMoved);
}

TEST_F(HoldemServerTest, BadRequestsPasswordsAndInvitations) {
    Player& alice = join("alice");
    Player& bob = join("bob");
    auto noticeOf = [](Player& p) {
        p.drain(300ms);
        for (auto it = p.frames.rbegin(); it != p.frames.rend(); ++it) {
            if (it->code == game::kTableNotice)
                return it->payload;
        }
        return std::string();
    };
    alice.client->send(in::kCreateTable, "Bad;Name:2:5:10:200:");
    EXPECT_EQ(noticeOf(alice), ":A table's name holds neither \":\" nor \";\".");
    alice.client->send(in::kCreateTable, "Big:11:5:10:200:");
    EXPECT_NE(noticeOf(alice).find("2 to 10 seats"), std::string::npos);
    alice.client->send(in::kCreateTable, "Big:4:5:10:999999999999999:");
    EXPECT_NE(noticeOf(alice).find("2 to 10 seats"), std::string::npos);
    alice.client->send(in::kCreateTable, "Rich:4:5:10:5000:");
    EXPECT_EQ(noticeOf(alice), "Rich:You need 5000 chips to sit at Rich; you have 1000.");
    alice.client->send(in::kCreateTable, "Den:4:5:10:100:pass:word");
    alice.drain(300ms);
    EXPECT_EQ(alice.bank, 900);

    bob.client->send(in::kJoinTable, "Den");
    bob.drain(300ms);
    ASSERT_FALSE(bob.frames.empty());
    EXPECT_EQ(bob.frames.back().code, game::kTablePassword);
    EXPECT_EQ(bob.frames.back().payload, "Den:This table asks for a password.");
    bob.client->send(in::kJoinTable, "Den:wrong");
    bob.drain(300ms);
    EXPECT_EQ(bob.frames.back().payload, "Den:Wrong password.");
    bob.client->send(in::kBettingAction, "Den:call");  // not seated: nothing happens
    bob.client->send(in::kTableChat, "Den:hello");
    EXPECT_EQ(noticeOf(bob), "");

    alice.client->send(in::kInviteToTable, "bob:Den");
    bob.drain(300ms);
    EXPECT_EQ(bob.frames.back().code, game::kTableInvitation);
    EXPECT_EQ(bob.frames.back().payload, "alice:Den:True");
    bob.client->send(in::kTurnAnswer, "Den:alice:no");
    EXPECT_EQ(noticeOf(alice), "Den:bob declined your invitation to Den.");
    bob.client->send(in::kJoinTable, "Den:pass:word");
    bob.drain(300ms);
    bool seated = false;
    for (const auto& f : bob.frames)
        seated |= f.code == game::kSeated;
    EXPECT_TRUE(seated);
    bob.client->send(in::kTableChat, "Den:hi: all");
    alice.drain(300ms);
    bool heard = false;
    for (const auto& f : alice.frames)
        heard |= f.code == game::kTableChat && f.payload == "Den:bob:hi: all";
    EXPECT_TRUE(heard);

    // Leaving between hands sends the chips straight back.
    alice.client->send(in::kLeaveTable, "Den");
    alice.drain(500ms);
    EXPECT_GE(alice.bank, 900);
}

// Chips on a table outlive the server: killed in the middle of a hand, it gives every seat's
// chips from before that hand back to the banks when it starts again. A dropped player who does
// not come back loses the seat, and its chips go back to the bank too.
TEST_F(HoldemServerTest, ChipsOnTablesOutliveAKilledServerAndAnAbandonedSeat) {
    {
        Player& alice = join("alice");
        Player& bob = join("bob");
        alice.client->send(in::kCreateTable, "Green Felt:2:5:10:300:");
        bob.client->send(in::kJoinTable, "Green Felt");
        // Hand 1 is played out (alice raises, bob folds), hand 2 is dealt when the server dies.
        bool raised = false;
        playUntil([&] { return alice.events("deal").size() >= 2; },
                  [&](Player&, const std::string&) {
                      const bool first = !raised;
                      raised = true;
                      return first ? std::string("raise:40") : std::string("fold");
                  });
        EXPECT_EQ(alice.bank + bob.bank, 2 * 700);
        server_->killAtOnce();
        players_.clear();
    }
    startServer({"--holdem-away", "0.5", "--holdem-pause", "0.2"});
    Player& alice = join("alice");
    Player& bob = join("bob");
    // The banks show when the two sit down again: the stakes written at the end of hand 1
    // (one won the blinds, one lost them) went back first, then 200 each went onto the table.
    alice.client->send(in::kCreateTable, "Den:2:5:10:200:");
    alice.drain(300ms);
    bob.client->send(in::kJoinTable, "Den");
    bob.drain(300ms);
    ASSERT_NE(alice.bank, -1);
    ASSERT_NE(bob.bank, -1);
    EXPECT_EQ(alice.bank + bob.bank, 2000 - 400);
    EXPECT_NE(alice.bank, bob.bank);

    const long long bobBank = bob.bank;
    bob.client.reset();  // gone, and not back within the half second the seat waits
    for (int i = 0; i < 50 && alice.events("leave").empty(); ++i) {
        alice.drain(100ms);
    }
    ASSERT_FALSE(alice.events("leave").empty());
    // The seat's chips (200, less a blind it may have posted) are back in bob's bank: sitting
    // down again takes 200 from it.
    auto again = member("bob");
    again->ignore(protocol::server_to_client::kBuddyPresence);
    again->send(in::kJoinTable, "Den");
    long long bank = -1;
    while (auto frame = again->next(300ms)) {
        if (frame->code == protocol::server_to_client::kScore) {
            bank = std::stoll(frame->payload);
        }
    }
    EXPECT_GE(bank, bobBank - 10);
    EXPECT_LE(bank, bobBank);
}

}  // namespace
}  // namespace tavren::test
