// Buddy lists, presence and locate against the real server: lists stored, checked and kept over a
// restart; presence records reaching exactly the members who have that buddy, for every change
// that shows; and where a member is.
#include <vector>

#include "server/support/ServerFixture.h"

namespace tavren::test {
namespace {

class BuddyTest : public ServerFixture {
  protected:
    // The whole answer to a list request: the list, then one record per buddy.
    struct ListAnswer {
        std::string list;
        std::vector<std::string> records;
    };
    static ListAnswer answer(RawClient& client) {
        ListAnswer answer{client.expect(out::kBuddyPresence).payload, {}};
        EXPECT_NE(answer.list.find(':'), std::string::npos) << "a list, not a record";
        const auto buddies = std::count(answer.list.begin(), answer.list.end(), ':');
        for (auto i = buddies - (answer.list == ":" ? 1 : 0); i > 0; --i) {
            answer.records.push_back(client.expect(out::kBuddyPresence).payload);
        }
        return answer;
    }
    static std::string record(RawClient& client) {
        const std::string payload = client.expect(out::kBuddyPresence).payload;
        EXPECT_EQ(payload.find(':'), std::string::npos) << "a record, not a list";
        return payload;
    }
    static void expectNothingPending(RawClient& client) {
        client.send(in::kAskEmail, "");
        client.expect(out::kAccountInfo);
    }
    static void join(RawClient& client, const std::string& channel) {
        client.send(in::kJoinRoom, channel);
        client.expect(out::kJoinedRoom);
        client.ignore(out::kMemberList);
    }
};

const std::string kOffline = ";False;False;False;False;;";
const std::string kOnline = ";True;False;False;False;;";

TEST_F(BuddyTest, ListsAreCheckedStoredInTheAccountsSpellingAndKeptOverARestart) {
    addMembers({"alice", "Bob", "Carol", "dave", "erin", "frank"});
    const std::vector<std::string> options = {
        "--max-buddies", "5",      "--max-buddy-folders", "2",
        "--frame-rate",  "100000", "--flood-limit",       "100000"};
    startServer(options);
    auto alice = member("alice");
    EXPECT_EQ(lastBuddyList_, ":");
    EXPECT_TRUE(lastBuddyRecords_.empty());
    auto carol = member("carol");

    // Unknown names are left out with one notice naming the first; the same buddy twice is kept
    // once, in its first folder; every name is stored as its account spells it.
    alice->send(in::kEditBuddyList, "Buddies.bob:Work.CAROL:Work.nobody:Buddies.BOB:Work.noone:");
    EXPECT_EQ(alice->expect(kNotice).payload,
              "There is no member called nobody; it was left out of your buddy list.");
    auto stored = answer(*alice);
    EXPECT_EQ(stored.list, "Buddies.Bob:Work.Carol:");
    EXPECT_EQ(stored.records,
              (std::vector<std::string>{"Buddies.Bob" + kOffline, "Work.Carol" + kOnline}));

    // Lists that break a rule are not stored; the member is told why, then given the list as it
    // was. Hostile lists are refused as cheaply as honest ones.
    std::string megabyte;
    while (megabyte.size() < 1024 * 1024 - 100) {
        megabyte += "Buddies.n" + std::to_string(megabyte.size()) + ":";
    }
    const std::vector<std::pair<std::string, std::string>> refusals = {
        {"A.bob:A.carol:A.dave:A.erin:A.alice:A.frank:", "a buddy list holds at most 5 buddies."},
        {megabyte, "a buddy list holds at most 5 buddies."},
        {"A.bob:B.carol:C.dave:", "a buddy list holds at most 2 folders."},
        {"Wo;rk.bob:", "a folder name has 1 to 32 characters"},
        {std::string(33, 'f') + ".bob:", "a folder name has 1 to 32 characters"},
        {".bob:", "a folder name has 1 to 32 characters"},
        {"Fol\x01"
         "der.bob:",
         "a folder name has 1 to 32 characters"},
        {"Buddies.@bob:", "a buddy name has 2 to 20 letters"},
        {"Buddies.@\xB3root:", "a buddy name has 2 to 20 letters"},
        {"Buddies.bo\x01"
         "b:",
         "a buddy name has 2 to 20 letters"},
        {"Buddies." + std::string(2000, 'b') + ":", "a buddy name has 2 to 20 letters"},
    };
    for (const auto& [list, rule] : refusals) {
        alice->send(in::kEditBuddyList, list);
        const std::string refusal = alice->expect(kNotice).payload;
        EXPECT_EQ(refusal.rfind("Your buddy list was not saved: " + rule, 0), 0u) << refusal;
        EXPECT_EQ(answer(*alice).list, "Buddies.Bob:Work.Carol:") << list.substr(0, 40);
    }

    // Adding files the member under "Buddies", after the buddies there; a name already in the
    // list, in any folder and any case, changes nothing; unknown and hostile names are told of.
    alice->send(in::kAddBuddy, " dave ");
    stored = answer(*alice);
    EXPECT_EQ(stored.list, "Buddies.Bob:Buddies.dave:Work.Carol:");
    EXPECT_EQ(stored.records[1], "Buddies.dave" + kOffline);
    alice->send(in::kAddBuddy, "carol");
    EXPECT_EQ(answer(*alice).list, "Buddies.Bob:Buddies.dave:Work.Carol:");
    alice->send(in::kAddBuddy, "nobody");
    EXPECT_EQ(alice->expect(kNotice).payload,
              "There is no member called nobody; it was left out of your buddy list.");
    EXPECT_EQ(answer(*alice).list, "Buddies.Bob:Buddies.dave:Work.Carol:");
    alice->send(in::kAddBuddy,
                "@\xB3"
                "dave");
    EXPECT_EQ(
        alice->expect(kNotice).payload.rfind("Your buddy list was not saved: a buddy name", 0), 0u);
    answer(*alice);
    alice->send(in::kAddBuddy, "erin");
    EXPECT_EQ(answer(*alice).list, "Buddies.Bob:Buddies.dave:Buddies.erin:Work.Carol:");
    alice->send(in::kAddBuddy, "alice");
    const std::string full = "Buddies.Bob:Buddies.dave:Buddies.erin:Buddies.alice:Work.Carol:";
    EXPECT_EQ(answer(*alice).list, full);
    alice->send(in::kAddBuddy, "frank");
    EXPECT_EQ(alice->expect(kNotice).payload,
              "Your buddy list was not saved: a buddy list holds at most 5 buddies.");
    EXPECT_EQ(answer(*alice).list, full);

    // A folder that is not there yet counts against the folders.
    carol->send(in::kEditBuddyList, "Work.bob:Home.dave:");
    EXPECT_EQ(answer(*carol).list, "Work.Bob:Home.dave:");
    carol->send(in::kAddBuddy, "erin");
    EXPECT_EQ(carol->expect(kNotice).payload,
              "Your buddy list was not saved: a buddy list holds at most 2 folders.");
    EXPECT_EQ(answer(*carol).list, "Work.Bob:Home.dave:");
    expectNothingPending(*alice);

    // After a restart the list is there at login, in its order, with a record for each buddy.
    alice.reset();
    carol.reset();
    ASSERT_EQ(server_->stop(), 0);
    startServer(options);
    auto dave = member("dave");
    alice = member("ALICE");
    EXPECT_EQ(lastBuddyList_, full);
    EXPECT_EQ(lastBuddyRecords_,
              (std::vector<std::string>{"Buddies.Bob" + kOffline, "Buddies.dave" + kOnline,
                                        "Buddies.erin" + kOffline, "Buddies.alice" + kOnline,
                                        "Work.Carol" + kOffline}));
    // An empty list empties it.
    alice->send(in::kEditBuddyList, "");
    stored = answer(*alice);
    EXPECT_EQ(stored.list, ":");
    EXPECT_TRUE(stored.records.empty());
    expectNothingPending(*alice);
    expectNothingPending(*dave);
}

TEST_F(BuddyTest, PresenceReachesOnlyTheMembersWhoHaveThatBuddy) {
    addMembers({"alice", "bob", "carol", "dave"});
    startServer({"--presence-interval", "0"});
    auto alice = member("alice");
    auto carol = member("carol");
    alice->send(in::kEditBuddyList, "Friends.BOB:Friends.carol:");
    EXPECT_EQ(answer(*alice).records,
              (std::vector<std::string>{"Friends.bob" + kOffline, "Friends.carol" + kOnline}));
    auto dave = member("dave");
    dave->send(in::kAddBuddy, "bob");
    answer(*dave);

    // Bob logs in: the two who have him hear it, each in their own folder; carol does not.
    auto bob = member("bob");
    EXPECT_EQ(record(*alice), "Friends.bob" + kOnline);
    EXPECT_EQ(record(*dave), "Buddies.bob" + kOnline);

    // His first channel shows; a second one changes nothing; leaving the first shows the next.
    join(*bob, "General");
    EXPECT_EQ(record(*alice), "Friends.bob;True;False;True;False;General;");
    join(*bob, "Second Room");
    bob->send(in::kLeaveRoom, "general");
    EXPECT_EQ(record(*alice), "Friends.bob;True;False;True;False;Second Room;");
    // Away with its text (a ":" in it would make the record a list), and back.
    bob->send(in::kAwayStatus, "/away lunch: back at 2; maybe");
    EXPECT_EQ(bob->expect(out::kAwayMenu).payload, "True;lunch: back at 2; maybe");
    EXPECT_EQ(record(*alice),
              "Friends.bob;True;True;True;False;Second Room;lunch. back at 2; maybe");
    bob->send(in::kAwayStatus, "/away " + std::string(201, 'z'));
    EXPECT_EQ(bob->expect(kNotice).payload,
              "You were not set away: an away message holds at most 200 characters.");
    bob->send(in::kAwayStatus, "/BACK");
    bob->expect(out::kAwayMenu);
    EXPECT_EQ(record(*alice), "Friends.bob;True;False;True;False;Second Room;");
    bob->send(in::kRoomWindowRequest, "leaveall");
    EXPECT_EQ(record(*alice), "Friends.bob" + kOnline);
    join(*bob, "General");
    EXPECT_EQ(record(*alice), "Friends.bob;True;False;True;False;General;");
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(record(*dave).rfind("Buddies.bob;True;", 0), 0u) << "dave heard it all too";
    }

    // A dropped connection is offline, in one record however many channels it leaves; so is a
    // login replaced by another.
    bob.reset();
    EXPECT_EQ(record(*alice), "Friends.bob" + kOffline);
    EXPECT_EQ(record(*dave), "Buddies.bob" + kOffline);
    auto carolAgain = member("carol");
    EXPECT_TRUE(carol->waitClosed());
    EXPECT_EQ(record(*alice), "Friends.carol" + kOffline);
    EXPECT_EQ(record(*alice), "Friends.carol" + kOnline);

    // A list that drops a buddy stops the records; one that adds one starts them.
    alice->send(in::kEditBuddyList, "Friends.carol:");
    answer(*alice);
    dave->send(in::kEditBuddyList, "");
    answer(*dave);
    bob = member("bob");
    carolAgain->send(in::kAddBuddy, "bob");
    EXPECT_EQ(answer(*carolAgain).records, (std::vector<std::string>{"Buddies.bob" + kOnline}));
    bob->send(in::kAwayStatus, "/away");
    EXPECT_EQ(record(*carolAgain), "Buddies.bob;True;True;False;False;;");
    expectNothingPending(*alice);
    expectNothingPending(*dave);
}

TEST_F(BuddyTest, ChangesInQuickSuccessionReachTheWatchersAsTheLatestState) {
    addMembers({"alice", "bob"});
    startServer(
        {"--presence-interval", "0.5", "--frame-rate", "100000", "--flood-limit", "100000"});
    auto alice = member("alice");
    alice->send(in::kAddBuddy, "bob");
    answer(*alice);
    auto bob = member("bob");
    EXPECT_EQ(record(*alice), "Buddies.bob" + kOnline) << "coming online goes out at once";

    // Two hundred channel changes and away toggles in one burst: the watcher hears the last
    // state, and far fewer records than there were changes.
    bob->ignore(out::kJoinedRoom);
    bob->ignore(out::kMemberList);
    bob->ignore(out::kAwayMenu);
    std::string burst;
    for (int i = 0; i < 100; ++i) {
        burst += protocol::EncodeFrame(in::kJoinRoom, "Hopping Room");
        burst += protocol::EncodeFrame(in::kAwayStatus, "/away " + std::to_string(i));
        burst += protocol::EncodeFrame(in::kLeaveRoom, "Hopping Room");
        burst += protocol::EncodeFrame(in::kAwayStatus, "/back");
    }
    burst += protocol::EncodeFrame(in::kAwayStatus, "/away done");
    bob->sendRaw(burst);
    int records = 0;
    for (std::string last; last != "Buddies.bob;True;True;False;False;;done"; ++records) {
        last = record(*alice);
        ASSERT_FALSE(last.empty());
    }
    EXPECT_LT(records, 100);
    expectNothingPending(*alice);
    // Going offline is not held back.
    bob.reset();
    EXPECT_EQ(record(*alice), "Buddies.bob" + kOffline);
}

TEST_F(BuddyTest, QuietMembersTurnIdleAndTheirNextRequestMakesThemActive) {
    addMembers({"alice", "bob"});
    startServer({"--idle-after", "0.3", "--presence-interval", "0", "--ping-interval", "0.2"});
    auto alice = member("alice");
    alice->send(in::kAddBuddy, "bob");
    answer(*alice);
    auto bob = member("bob");
    EXPECT_EQ(record(*alice), "Buddies.bob" + kOnline);
    EXPECT_EQ(record(*alice), "Buddies.bob;True;False;False;True;;");

    // Answering pings and sending typing status leave him idle; the next request does not.
    while (bob->pingsSeen() < 2) {
        bob->next(std::chrono::milliseconds(100));
    }
    bob->send(in::kTypingStatus, "alice:1");
    bob->send(in::kAskEmail, "");
    bob->expect(out::kAccountInfo);
    EXPECT_EQ(alice->expect(out::kTypingStatus).payload, "bob:1");
    EXPECT_EQ(record(*alice), "Buddies.bob" + kOnline);
    // And idle again after another quiet spell.
    EXPECT_EQ(record(*alice), "Buddies.bob;True;False;False;True;;");
}

TEST_F(BuddyTest, AMemberWhoLogsInAgainAndAgainLeavesNothingOfTheOldSessionsBehind) {
    addMembers({"mallory", "bob", "carol", "dave", "erin"});
    startServer({"--presence-interval", "0"});
    auto bob = member("bob");
    bob->send(in::kAddBuddy, "mallory");
    answer(*bob);
    auto carol = member("carol");
    std::string list;
    for (const char* name : {"bob", "carol", "dave", "erin", "mallory"}) {
        list += std::string("Watched.") + name + ":";
    }
    for (int i = 0; i < 300; ++i) {
        list += "Watched.ghost" + std::to_string(i) + ":";  // not members: left out
    }
    std::unique_ptr<RawClient> mallory = member("mallory");
    EXPECT_EQ(record(*bob), "Buddies.mallory" + kOnline);
    mallory->send(in::kEditBuddyList, list);
    EXPECT_EQ(mallory->expect(kNotice).payload,
              "Your buddy list was not saved: a buddy list holds at most 200 buddies.");
    answer(*mallory);
    // Five members and 195 ghosts: at the bound, so stored without them.
    mallory->send(in::kEditBuddyList, list.substr(0, list.find("Watched.ghost195")));
    EXPECT_EQ(mallory->expect(kNotice).payload,
              "There is no member called ghost0; it was left out of your buddy list.");
    EXPECT_EQ(answer(*mallory).list,
              "Watched.bob:Watched.carol:Watched.dave:Watched.erin:Watched.mallory:");

    // Logging in again, from a second connection while the first is open or after it is gone:
    // each time the watcher hears one session leave and one arrive, and the list comes back.
    for (int i = 0; i < 6; ++i) {
        if (i % 2 == 0) {
            mallory.reset();
        }
        auto again = member("MALLORY");
        EXPECT_EQ(lastBuddyRecords_.size(), 5u);
        EXPECT_EQ(record(*bob), "Buddies.mallory" + kOffline) << i;
        EXPECT_EQ(record(*bob), "Buddies.mallory" + kOnline) << i;
        if (mallory) {
            EXPECT_TRUE(mallory->waitClosed());
        }
        mallory = std::move(again);
    }
    // A buddy's change reaches the one session there is, once; and the others are served on.
    carol->send(in::kAwayStatus, "/away out");
    carol->expect(out::kAwayMenu);
    EXPECT_EQ(record(*mallory), "Watched.carol;True;True;False;False;;out");
    expectNothingPending(*mallory);
    expectNothingPending(*bob);
}

TEST_F(BuddyTest, LocateSaysWhereAMemberIsInOneOfFourSentences) {
    addMembers({"alice", "Bob", "carol"});
    startServer();
    auto alice = member("alice");
    auto bob = member("bob");
    const auto locate = [&](const std::string& name) {
        alice->send(in::kLocateUser, name);
        return alice->expect(out::kLocateResult).payload;
    };
    EXPECT_EQ(locate("BOB"), "Bob is Online but not in a channel");
    join(*bob, "General");
    join(*bob, "Poker Lounge");
    EXPECT_EQ(locate(" bob "), "Bob is Online in channel(s): General, Poker Lounge");
    EXPECT_EQ(locate("carol"), "carol is Offline");
    EXPECT_EQ(locate("nobody"), "There is no member called nobody.");
    EXPECT_EQ(locate("no\x01"
                     "body" +
                     std::string(2000, 'y')),
              "There is no member called no?body" + std::string(33, 'y') + ".");
    EXPECT_EQ(locate(""), "There is no member called .");
    bob.reset();
    EXPECT_EQ(locate("bob"), "Bob is Offline");
}

}  // namespace
}  // namespace tavren::test
