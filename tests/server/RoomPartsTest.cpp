// The parts of channels that need no network: name rules, rank order, the line bucket, command
// words, and the store that keeps channels.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "server/rooms/ChannelRules.h"
#include "server/rooms/MemberRank.h"
#include "server/rooms/RoomCommand.h"
#include "server/session/LineBucket.h"
#include "server/storage/SqliteAccountStore.h"
#include "server/storage/SqliteChannelStore.h"
#include "server/storage/SqliteDatabase.h"

namespace tavren::server {
namespace {

using namespace std::chrono_literals;

TEST(ChannelRulesTest, NamesAtTheEdgesAndWhatOfficialNamesMayDoMore) {
    for (const std::string& good :
         {std::string("Lounge"), std::string(32, 'n'), std::string("Alice's Place"),
          std::string("caf\xe9 au lait"), std::string("in@side*ok"), std::string("a  b  c")}) {
        EXPECT_EQ(ChannelRules::checkName(good), "") << good;
    }
    for (const std::string& bad :
         {std::string(), std::string("Lounj"), std::string(33, 'n'), std::string("Colon:Room"),
          std::string("Semi;Room"), std::string("@Lounge"), std::string("*Lounge"),
          std::string(" Lounge"), std::string("Lounge "), std::string("Lounge\xA0"),
          std::string("Tab\tRoom"), std::string("One\x01Two"), std::string("Del\x7fRoom"),
          std::string("Undef\x9dRoom"), std::string("Null\0Room", 9)}) {
        EXPECT_NE(ChannelRules::checkName(bad), "") << bad;
    }
    // Only the length is different for the operator's own channels.
    EXPECT_EQ(ChannelRules::checkOfficialName("Chat"), "");
    EXPECT_EQ(ChannelRules::checkOfficialName(std::string(100, 'o')), "");
    for (const std::string& bad :
         {std::string(), std::string(101, 'o'), std::string("@Staff"), std::string("Help:Desk")}) {
        EXPECT_NE(ChannelRules::checkOfficialName(bad), "") << bad;
    }
    EXPECT_EQ(ChannelRules::checkTopic(std::string(200, 't'), 200), "");
    EXPECT_NE(ChannelRules::checkTopic(std::string(201, 't'), 200), "");
    EXPECT_NE(ChannelRules::checkTopic("new\nline", 200), "");
    EXPECT_EQ(ChannelRules::echo("a\x01" + std::string(100, 'b')), "a?" + std::string(38, 'b'));
}

TEST(MemberRankTest, ListsGoStaffHighestFirstThenHostThenByNameWhateverTheCase) {
    EXPECT_EQ(RankOf(3, true), MemberRank::kStaff3) << "staff who host show the staff mark";
    EXPECT_EQ(RankOf(0, true), MemberRank::kHost);
    EXPECT_EQ(RankOf(0, false), MemberRank::kMember);
    std::vector<ListedMember> members = {
        {"zed", MemberRank::kMember},   {"Bob", MemberRank::kMember},
        {"host", MemberRank::kHost},    {"one", MemberRank::kStaff1},
        {"three", MemberRank::kStaff3}, {"alice", MemberRank::kMember},
        {"two", MemberRank::kStaff2},   {"Alf", MemberRank::kStaff3},
    };
    EXPECT_EQ(MemberListPayload("General", members),
              "General:@\xB3"
              "Alf;@\xB3three;@\xB2two;@\xB9one;@host;alice;Bob;zed;");
    std::vector<ListedMember> nobody;
    EXPECT_EQ(MemberListPayload("General", nobody), "General:");
}

TEST(MemberRankTest, TheFullestListStillFitsOnePayload) {
    // The member cap's highest value, every name as long as names get, the longest mark, and the
    // longest official name: the list must still be a payload the client accepts.
    std::vector<ListedMember> members(40000, {std::string(20, 'n'), MemberRank::kStaff3});
    EXPECT_LE(MemberListPayload(std::string(100, 'c'), members).size(), 1024u * 1024u);
}

TEST(LineBucketTest, ABurstThenOneLinePerIntervalAndNoSavingUpWhileFull) {
    auto now = LineBucket::Clock::now();
    LineBucket bucket(3, 1s, now);
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(bucket.take(now)) << i;
    }
    EXPECT_FALSE(bucket.take(now));
    EXPECT_FALSE(bucket.take(now + 999ms));
    // Time waited toward the next line is not lost when a line is earned.
    now += 1500ms;
    EXPECT_TRUE(bucket.take(now));
    EXPECT_FALSE(bucket.take(now));
    now += 500ms;
    EXPECT_TRUE(bucket.take(now));
    // A long pause fills the hand, and no more than that.
    now += 1h;
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(bucket.take(now)) << i;
    }
    EXPECT_FALSE(bucket.take(now));
    // Time spent with a full hand earns nothing: right after the burst, the next line still
    // takes a whole interval.
    LineBucket idle(2, 1s, now);
    now += 10s;
    EXPECT_TRUE(idle.take(now));
    EXPECT_TRUE(idle.take(now));
    EXPECT_FALSE(idle.take(now + 900ms));
    EXPECT_TRUE(idle.take(now + 1s));
}

TEST(RoomCommandTest, WordsMatchWithoutCaseArgumentsLoseTheirBlanksUnknownWordsAreCut) {
    const auto topic = RoomCommand::parse("/TOPIC   new: topic  ");
    EXPECT_EQ(topic.kind, RoomCommand::Kind::kTopic);
    EXPECT_EQ(topic.argument, "new: topic");
    EXPECT_EQ(RoomCommand::parse("/topic").argument, "");
    EXPECT_EQ(RoomCommand::parse("/Info alice").kind, RoomCommand::Kind::kInfo);
    for (const char* unknown : {"/topics", "/ topic", "/kickban bob:bye", "/", "/info\tx"}) {
        EXPECT_EQ(RoomCommand::parse(unknown).kind, RoomCommand::Kind::kUnknown) << unknown;
    }
    EXPECT_EQ(RoomCommand::parse("/" + std::string(500, 'y')).word.size(), 40u);
}

std::filesystem::path home() {
    return std::getenv("TAVREN_HOME");
}

TEST(ChannelStoreTest, NamesAreUniqueInAnyCaseHostsAreCountedOfficialChannelsNeverExpire) {
    SqliteDatabase db(home() / "channels.db");
    SqliteAccountStore accounts(db);
    SqliteChannelStore channels(db);
    Account alice;
    alice.name = "alice";
    alice.passwordHash = "h";
    ASSERT_TRUE(accounts.create(alice));

    Channel lounge{0, "Lounge Room", "", alice.id, false, 100, 100, ""};
    ASSERT_TRUE(channels.create(lounge));
    Channel again{0, "LOUNGE ROOM", "", alice.id, false, 100, 100, ""};
    EXPECT_FALSE(channels.create(again));
    Channel old{0, "Old Room", "", alice.id, false, 10, 10, ""};
    ASSERT_TRUE(channels.create(old));
    EXPECT_EQ(channels.countHostedBy(alice.id), 2u);
    channels.setTopic(lounge.id, "caf\xe9: open");
    EXPECT_EQ(channels.findByName("lounge room").value_or(Channel{}).topic, "caf\xe9: open");

    // "Old Room" becomes official: no host any more, and it never expires.
    channels.setOfficial({"General", "old room"}, 50);
    EXPECT_EQ(channels.count(), 3u);
    const auto general = channels.findByName("general");
    ASSERT_TRUE(general);
    EXPECT_TRUE(general->official);
    EXPECT_EQ(general->hostId, 0);
    EXPECT_EQ(channels.countHostedBy(alice.id), 1u);
    channels.setLastUsed(lounge.id, 20);
    auto expired = channels.unusedSince(60);
    ASSERT_EQ(expired.size(), 1u);
    EXPECT_EQ(expired[0].name, "Lounge Room");
    channels.remove(expired[0].id);
    EXPECT_FALSE(channels.findByName("Lounge Room"));

    // Official no longer: a channel dropped from the list becomes a member channel again.
    channels.setOfficial({"General"}, 60);
    EXPECT_FALSE(channels.findByName("Old Room").value_or(Channel{}).official);
    EXPECT_EQ(channels.unusedSince(1000).size(), 1u);
}

}  // namespace
}  // namespace tavren::server
