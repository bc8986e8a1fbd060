// The parts of buddy lists and presence that need no network: the list's layout and rules, the
// presence record, who becomes idle when, who watches whom, and the store that keeps lists.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "core/protocol/Fields.h"
#include "server/contacts/BuddyList.h"
#include "server/contacts/IdleTracker.h"
#include "server/contacts/PresenceState.h"
#include "server/contacts/WatcherIndex.h"
#include "server/storage/SqliteAccountStore.h"
#include "server/storage/SqliteBuddyStore.h"
#include "server/storage/SqliteDatabase.h"
#include "server/storage/SqliteStatement.h"

namespace tavren::server {
namespace {

using namespace std::chrono_literals;

std::vector<std::string> entries(const std::vector<Buddy>& buddies) {
    std::vector<std::string> shown;
    for (const Buddy& buddy : buddies) {
        shown.push_back(buddy.folder + "." + buddy.name);
    }
    return shown;
}

TEST(BuddyListTest, EntriesComeOutInOrderOnceEachAndGoBackTheSameWay) {
    const BuddyList::Limits limits;
    const auto parsed = BuddyList::parse("Buddies.anna:Work.bob:", limits);
    EXPECT_EQ(parsed.problem, "");
    EXPECT_EQ(entries(parsed.buddies), (std::vector<std::string>{"Buddies.anna", "Work.bob"}));
    EXPECT_EQ(BuddyList::serialise(parsed.buddies), "Buddies.anna:Work.bob:");

    // The empty list either way, and the server's ":" for it.
    for (const char* empty : {"", ":", ":::"}) {
        const auto none = BuddyList::parse(empty, limits);
        EXPECT_EQ(none.problem, "") << empty;
        EXPECT_TRUE(none.buddies.empty()) << empty;
    }
    EXPECT_EQ(BuddyList::serialise({}), ":");

    // The folder ends at the first "."; an entry without one is filed where the client files
    // it; the last ":" may be missing; the same buddy in any case is kept once, in its first
    // folder, and a folder left without buddies is gone.
    const auto mixed =
        BuddyList::parse("::Work.first.last::anna:Buddies.ANNA:Old.anna:Team.bob", limits);
    EXPECT_EQ(mixed.problem, "");
    EXPECT_EQ(entries(mixed.buddies),
              (std::vector<std::string>{"Work.first.last", "Buddies.anna", "Team.bob"}));

    // A new buddy joins the end of its folder, or a new folder at the end of the list.
    std::vector<Buddy> buddies = mixed.buddies;
    BuddyList::insert(buddies, {"Work", "carol", 3});
    BuddyList::insert(buddies, {"Friends", "dave", 4});
    EXPECT_EQ(entries(buddies),
              (std::vector<std::string>{"Work.first.last", "Work.carol", "Buddies.anna", "Team.bob",
                                        "Friends.dave"}));
    EXPECT_TRUE(BuddyList::contains(buddies, "CAROL"));
    EXPECT_FALSE(BuddyList::contains(buddies, "caro"));
    EXPECT_EQ(BuddyList::folderCount(buddies), 4u);
}

TEST(BuddyListTest, EveryRuleIsCheckedAndAHugeListStopsAtTheFirstEntryTooMany) {
    const BuddyList::Limits limits{3, 2};
    EXPECT_EQ(BuddyList::parse("A.a1:A.a2:A.a3:A.a4:", limits).problem,
              "a buddy list holds at most 3 buddies.");
    EXPECT_EQ(BuddyList::parse("A.a1:B.b1:C.c1:", limits).problem,
              "a buddy list holds at most 2 folders.");
    // A duplicate is no entry of its own folder.
    EXPECT_EQ(BuddyList::parse("A.a1:B.b1:C.A1:", limits).problem, "");

    const std::string folderRule = BuddyList::checkFolder("");
    for (const std::string& bad :
         {std::string(".bob"), std::string("Wo;rk.bob"), std::string(33, 'f') + ".bob",
          std::string("Fo\x01lder.bob"), std::string("Fo\x02lder.bob"),
          std::string("Fo\x9dlder.bob"), std::string("Tab\tFolder.bob")}) {
        EXPECT_EQ(BuddyList::parse(bad, limits).problem, folderRule) << bad;
    }
    EXPECT_EQ(BuddyList::parse(std::string(32, 'f') + ".bob:Caf\xe9 & co.anna:", limits).problem,
              "");

    const std::string nameRule = BuddyList::checkName("");
    for (const std::string& bad :
         {std::string("Buddies."), std::string("Buddies.@bob"), std::string("Buddies.@\xB3root"),
          std::string("Buddies.bo\x01"
                      "b"),
          std::string("Buddies.") + std::string(2000, 'a'), std::string("Buddies.1bob"),
          std::string("Buddies.bob;x"), std::string("Buddies.*new_user*"),
          std::string("Buddies..bob")}) {
        EXPECT_EQ(BuddyList::parse(bad, limits).problem, nameRule) << bad;
    }
    EXPECT_NE(folderRule, "");
    EXPECT_NE(nameRule, "");

    // A megabyte of entries is refused at the first one beyond the bound.
    std::string huge;
    while (huge.size() < 1024 * 1024) {
        huge += "Buddies.name" + std::to_string(huge.size()) + ":";
    }
    const auto refused = BuddyList::parse(huge, BuddyList::Limits{});
    EXPECT_EQ(refused.problem, "a buddy list holds at most 200 buddies.");
    EXPECT_TRUE(refused.buddies.empty());
    EXPECT_EQ(BuddyList::parse(std::string(1024 * 1024, ':'), BuddyList::Limits{}).problem, "");
}

TEST(PresenceStateTest, RecordsHoldSevenFieldsAndNeverAColon) {
    PresenceState state;
    EXPECT_EQ(state.recordFor("Buddies", "bob"), "Buddies.bob;False;False;False;False;;");
    state.online = true;
    EXPECT_EQ(state.recordFor("Work", "bob"), "Work.bob;True;False;False;False;;");
    state.idle = true;
    state.channel = "Poker Lounge";
    EXPECT_EQ(state.recordFor("Work", "bob"), "Work.bob;True;False;True;True;Poker Lounge;");
    state.away = true;
    state.awayText = "lunch: back at 2; maybe";
    const std::string record = state.recordFor("Work", "bob");
    EXPECT_EQ(record, "Work.bob;True;True;True;True;Poker Lounge;lunch. back at 2; maybe");
    const auto fields = protocol::SplitFields(record, ";", 7);
    ASSERT_EQ(fields.size(), 7u);
    EXPECT_EQ(fields[6], "lunch. back at 2; maybe");

    // Whatever was left of the state, an offline member shows nothing of it.
    state.online = false;
    EXPECT_EQ(state.recordFor("Work", "bob"), "Work.bob;False;False;False;False;;");
    // A text without being away is not shown either.
    state.online = true;
    state.away = false;
    state.idle = false;
    state.channel.clear();
    EXPECT_EQ(state.recordFor("Work", "bob"), "Work.bob;True;False;False;False;;");
}

TEST(IdleTrackerTest, TheQuietestGoIdleFirstAndARequestBringsThemBack) {
    const auto start = IdleTracker::Clock::now();
    IdleTracker tracker(10s);
    EXPECT_FALSE(tracker.nextDeadline());
    tracker.add(1, start);
    tracker.add(2, start + 1s);
    tracker.add(3, start + 2s);
    EXPECT_FALSE(tracker.touch(1, start + 5s)) << "active all along";
    EXPECT_EQ(tracker.nextDeadline(), start + 11s) << "member 2 is the quietest now";
    EXPECT_TRUE(tracker.expire(start + 10s).empty());
    EXPECT_EQ(tracker.expire(start + 12s), (std::vector<std::uint64_t>{2, 3}));
    EXPECT_TRUE(tracker.expire(start + 13s).empty()) << "each is reported once";
    EXPECT_EQ(tracker.nextDeadline(), start + 15s);

    EXPECT_TRUE(tracker.touch(3, start + 14s)) << "idle until now";
    EXPECT_FALSE(tracker.touch(3, start + 14s));
    tracker.remove(1);
    EXPECT_EQ(tracker.nextDeadline(), start + 24s);
    EXPECT_FALSE(tracker.touch(1, start + 14s)) << "gone members are not tracked again";
    tracker.remove(2);
    tracker.remove(3);
    EXPECT_FALSE(tracker.nextDeadline());
}

TEST(WatcherIndexTest, AChangeFindsItsWatchersByFolderAndNobodyElse) {
    WatcherIndex index;
    index.watch("alice", {{"Buddies", "Bob", 2}, {"Work", "carol", 3}});
    index.watch("Dave", {{"Work", "BOB", 2}});
    index.watch("carol", {{"Buddies", "bob", 2}, {"Buddies", "carol", 3}});

    const auto sorted = [](std::vector<WatcherIndex::Audience> audiences) {
        std::sort(audiences.begin(), audiences.end(),
                  [](const auto& a, const auto& b) { return a.folder < b.folder; });
        for (auto& audience : audiences) {
            std::sort(audience.watchers.begin(), audience.watchers.end());
        }
        return audiences;
    };
    auto bob = sorted(index.audienceOf("bob"));
    ASSERT_EQ(bob.size(), 2u);
    EXPECT_EQ(bob[0].folder, "Buddies");
    EXPECT_EQ(bob[0].watchers, (std::vector<std::string>{"alice", "carol"}));
    EXPECT_EQ(bob[1].folder, "Work");
    EXPECT_EQ(bob[1].watchers, (std::vector<std::string>{"Dave"}));
    EXPECT_EQ(index.watcherCount("CAROL"), 2u) << "carol watches herself";
    EXPECT_TRUE(index.audienceOf("alice").empty());

    // A watcher who leaves, or changes the list, is taken out of every entry it was in.
    index.unwatch("ALICE", {{"Buddies", "Bob", 2}, {"Work", "carol", 3}});
    EXPECT_EQ(index.watcherCount("bob"), 2u);
    EXPECT_EQ(index.watcherCount("carol"), 1u);
    index.unwatch("carol", {{"Buddies", "bob", 2}, {"Buddies", "carol", 3}});
    index.unwatch("dave", {{"Work", "BOB", 2}});
    EXPECT_EQ(index.watcherCount("bob"), 0u);
    EXPECT_TRUE(index.audienceOf("bob").empty());
}

TEST(BuddyStoreTest, ListsKeepTheirOrderAndReadBackInTheAccountsSpelling) {
    SqliteDatabase db(std::filesystem::path(std::getenv("TAVREN_HOME")) / "buddies.db");
    SqliteAccountStore accounts(db);
    SqliteBuddyStore buddies(db);
    std::vector<Account> created;
    for (const char* name : {"alice", "Bob", "carol"}) {
        Account account;
        account.name = name;
        account.passwordHash = "h";
        ASSERT_TRUE(accounts.create(account));
        created.push_back(account);
    }
    std::vector<Buddy> wanted = {
        {"Work", "CAROL", 0}, {"Buddies", "nobody", 0}, {"Buddies", "bob", 0}};
    buddies.lookUp(wanted);
    EXPECT_EQ(wanted[0], (Buddy{"Work", "carol", created[2].id}));
    EXPECT_EQ(wanted[1], (Buddy{"Buddies", "nobody", 0})) << "unknown names keep id 0";
    EXPECT_EQ(wanted[2], (Buddy{"Buddies", "Bob", created[1].id}));

    std::erase_if(wanted, [](const Buddy& buddy) { return buddy.accountId == 0; });
    buddies.replace(created[0].id, wanted);
    EXPECT_EQ(buddies.listOf(created[0].id), wanted);
    EXPECT_TRUE(buddies.listOf(created[1].id).empty());
    buddies.replace(created[0].id, {{"Old Friends", "", created[1].id}});
    EXPECT_EQ(buddies.listOf(created[0].id),
              (std::vector<Buddy>{{"Old Friends", "Bob", created[1].id}}));
    buddies.replace(created[0].id, {});
    EXPECT_TRUE(buddies.listOf(created[0].id).empty());
}

TEST(BuddyStoreTest, ADatabaseFromBeforeBuddyListsIsUpgradedAndKeepsItsAccounts) {
    const auto file = std::filesystem::path(std::getenv("TAVREN_HOME")) / "old.db";
    std::filesystem::remove(file);  // left by an earlier run
    Account alice;
    alice.name = "alice";
    alice.passwordHash = "h";
    {
        SqliteDatabase db(file);
        ASSERT_TRUE(SqliteAccountStore(db).create(alice));
        // As the server before buddy lists left it: every table and index that came with a
        // later schema step goes.
        std::vector<std::string> later;
        {
            SqliteStatement query(db,
                                  "SELECT type, name FROM sqlite_master WHERE sql IS NOT NULL AND"
                                  " name NOT IN ('accounts', 'channels', 'channels_by_host',"
                                  " 'channels_by_last_use')");
            while (query.step()) {
                later.push_back("DROP " + query.columnText(0) + " IF EXISTS " +
                                query.columnText(1));
            }
        }
        for (const std::string& drop : later) {
            db.execute(drop);
        }
        db.execute("PRAGMA user_version=2");
    }
    SqliteDatabase db(file);
    EXPECT_EQ(SqliteAccountStore(db).findByName("alice").value_or(Account{}).id, alice.id);
    SqliteBuddyStore buddies(db);
    buddies.replace(alice.id, {{"Buddies", "", alice.id}});
    EXPECT_EQ(buddies.listOf(alice.id), (std::vector<Buddy>{{"Buddies", "alice", alice.id}}));
}

}  // namespace
}  // namespace tavren::server
