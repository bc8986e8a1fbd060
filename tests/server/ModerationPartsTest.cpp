// The parts of channel moderation that need no network: address ranges, the rights table,
// command words, channel passwords, invitations, the directory payload and the store that keeps
// bans, suspensions and referrals.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "core/protocol/Fields.h"
#include "server/rooms/AddressRange.h"
#include "server/rooms/ChannelInvitations.h"
#include "server/rooms/ChannelPassword.h"
#include "server/rooms/ChannelRequests.h"
#include "server/rooms/ModerationRights.h"
#include "server/rooms/RoomCommand.h"
#include "server/rooms/Sanctions.h"
#include "server/storage/SqliteAccountStore.h"
#include "server/storage/SqliteChannelStore.h"
#include "server/storage/SqliteDatabase.h"
#include "server/storage/SqliteModerationStore.h"

namespace tavren::server {
namespace {

TEST(AddressRangeTest, AnIPv4AddressBansItsSlash24AndAnIPv6AddressItsSlash64) {
    EXPECT_EQ(AddressRange::of("203.0.113.77"), "203.0.113.0/24");
    EXPECT_EQ(AddressRange::of("::ffff:203.0.113.77"), "203.0.113.0/24") << "IPv4 in IPv6";
    EXPECT_EQ(AddressRange::of("2001:db8:a:b:c:d:e:f"), "2001:db8:a:b::/64");
    EXPECT_EQ(AddressRange::of("::1"), "0:0:0:0::/64");
    for (const char* junk : {"", "alice", "300.1.1.1", "1.2.3", "1.2.3.4.5", "::g"}) {
        EXPECT_FALSE(AddressRange::of(junk)) << junk;
    }
    // The network layer writes its peers as address ":" port, IPv6 without brackets.
    EXPECT_EQ(AddressRange::ofPeer("127.0.0.1:41234"), "127.0.0.0/24");
    EXPECT_EQ(AddressRange::ofPeer("2001:db8:a:b::9:5678"), "2001:db8:a:b::/64");
    // Staff may name a range by any address in it, with or without its prefix length, but never
    // with another length.
    EXPECT_EQ(AddressRange::parse("203.0.113.5"), "203.0.113.0/24");
    EXPECT_EQ(AddressRange::parse("203.0.113.0/24"), "203.0.113.0/24");
    EXPECT_EQ(AddressRange::parse("2001:db8:a:b::/64"), "2001:db8:a:b::/64");
    EXPECT_FALSE(AddressRange::parse("203.0.113.0/16"));
    EXPECT_FALSE(AddressRange::parse("alice"));
    EXPECT_FALSE(AddressRange::parse("bob.smith"));
}

TEST(ModerationRightsTest, EachActionAgainstEachRankAndOnlyDownwards) {
    const Standing member{0, false};
    const Standing host{0, true};
    const Standing staff1{1, false};
    const Standing staff2{2, false};
    const Standing staff3{3, false};
    using Action = ModerationAction;
    struct Row {
        Action action;
        bool member, host, staff1, staff2, staff3;
    };
    for (const Row& row : {Row{Action::kKick, false, true, true, true, true},
                           Row{Action::kChannelBan, false, true, true, true, true},
                           Row{Action::kListBans, false, true, true, true, true},
                           Row{Action::kAccountBan, false, false, false, true, true},
                           Row{Action::kSuspend, false, false, false, true, true},
                           Row{Action::kSubnetBan, false, false, false, false, true}}) {
        const auto action = static_cast<int>(row.action);
        EXPECT_EQ(ModerationRights::may(row.action, member), row.member) << action;
        EXPECT_EQ(ModerationRights::may(row.action, host), row.host) << action;
        EXPECT_EQ(ModerationRights::may(row.action, staff1), row.staff1) << action;
        EXPECT_EQ(ModerationRights::may(row.action, staff2), row.staff2) << action;
        EXPECT_EQ(ModerationRights::may(row.action, staff3), row.staff3) << action;
        EXPECT_FALSE(ModerationRights::refusal(row.action).empty());
    }
    EXPECT_TRUE(ModerationRights::outranks(host, member));
    EXPECT_FALSE(ModerationRights::outranks(host, staff1)) << "a host cannot touch staff";
    EXPECT_FALSE(ModerationRights::outranks(staff1, staff1));
    EXPECT_FALSE(ModerationRights::outranks(staff2, staff3));
    EXPECT_TRUE(ModerationRights::outranks(staff3, staff2));
    EXPECT_TRUE(ModerationRights::outranks(staff1, Standing{0, true}));
    // Staff who host rank as staff.
    EXPECT_EQ((Standing{2, true}).rank(), staff2.rank());
}

TEST(RoomCommandTest, ModerationAndVoteWordsKeepTheirNameAndReason) {
    using Kind = RoomCommand::Kind;
    const auto kick = RoomCommand::parse("/KICK bob: said: too much ");
    EXPECT_EQ(kick.kind, Kind::kKick);
    EXPECT_EQ(kick.argument, "bob: said: too much");
    const std::pair<const char*, Kind> words[] = {
        {"/ban x:y", Kind::kBan},
        {"/chanban x:y", Kind::kChannelBan},
        {"/subban x:y", Kind::kSubnetBan},
        {"/suspend x", Kind::kSuspend},
        {"/unban x", Kind::kUnban},
        {"/unsuspend x", Kind::kUnsuspend},
        {"/ipbans", Kind::kBanList},
        {"/referal x", Kind::kReferral},
        {"/vote Pizza?", Kind::kVote},
        {"/Yes", Kind::kYes},
        {"/no", Kind::kNo},
        {"/noo", Kind::kUnknown},
    };
    for (const auto& [text, kind] : words) {
        EXPECT_EQ(RoomCommand::parse(text).kind, kind) << text;
    }
    EXPECT_EQ(RoomCommand::parse("/vote  Is it: late?").argument, "Is it: late?");
}

TEST(ChannelPasswordTest, HashesVerifyOnlyTheirOwnPasswordAndTheRulesAreFew) {
    const std::string hash = ChannelPassword::hash("open sesame");
    EXPECT_EQ(hash.rfind("$argon2id$", 0), 0u) << "never kept in clear";
    EXPECT_TRUE(ChannelPassword::verify(hash, "open sesame"));
    EXPECT_FALSE(ChannelPassword::verify(hash, "Open sesame"));
    EXPECT_FALSE(ChannelPassword::verify(hash, ""));
    EXPECT_NE(ChannelPassword::hash("open sesame"), hash) << "salted";
    EXPECT_EQ(ChannelPassword::check(std::string(32, 'p')), "");
    EXPECT_EQ(ChannelPassword::check("caf\xe9 ;"), "");
    EXPECT_NE(ChannelPassword::check(std::string(33, 'p')), "");
    EXPECT_NE(ChannelPassword::check("tab\there"), "");
}

TEST(ChannelInvitationsTest, AnInvitationServesOneJoinOfTheSameLoginAndTheLatestFewAreKept) {
    ChannelInvitations invitations;
    invitations.add("Bob", 7, {"lounge", "alice", 1});
    EXPECT_TRUE(invitations.find("bob", 7, "lounge"));
    EXPECT_FALSE(invitations.find("bob", 8, "lounge")) << "a later login of bob";
    EXPECT_FALSE(invitations.find("bob", 7, "other"));
    // A second invitation to the same channel: the latest inviter counts.
    invitations.add("bob", 7, {"lounge", "carol", 3});
    const auto taken = invitations.take("BOB", 7, "lounge");
    ASSERT_TRUE(taken);
    EXPECT_EQ(taken->inviter, "carol");
    EXPECT_FALSE(invitations.take("bob", 7, "lounge")) << "used up";

    for (int i = 0; i < 25; ++i) {
        invitations.add("bob", 7, {"room" + std::to_string(i), "alice", 1});
    }
    EXPECT_FALSE(invitations.find("bob", 7, "room4"));
    EXPECT_TRUE(invitations.find("bob", 7, "room5"));
    invitations.forget("bob", 6);  // an old login leaving takes nothing
    EXPECT_TRUE(invitations.find("bob", 7, "room24"));
    invitations.forget("bob", 7);
    EXPECT_FALSE(invitations.find("bob", 7, "room24"));
}

TEST(ChannelDirectoryTest, EachChannelIsOneRecordOfFiveFields) {
    Channel lounge{1, "Lounge Room", "cards: and chat", 5, false, 0, 0, "$argon2id$x"};
    Channel general{2, "General", "", 0, true, 0, 0, ""};
    const std::string payload = ChannelRequests::directoryPayload({{lounge, 12}, {general, 0}});
    EXPECT_EQ(payload,
              "Lounge Room\x01"
              "12\x01"
              "cards: and chat\x01"
              "False\x01"
              "True\x02"
              "General\x01"
              "0\x01\x01"
              "True\x01"
              "False\x02");
    EXPECT_EQ(protocol::SplitRecords(payload).size(), 2u);
    EXPECT_EQ(ChannelRequests::directoryPayload({}), "");
}

std::filesystem::path home() {
    return std::getenv("TAVREN_HOME");
}

Account makeAccount(SqliteAccountStore& accounts, const std::string& name) {
    Account account;
    account.name = name;
    account.passwordHash = "h";
    EXPECT_TRUE(accounts.create(account));
    return account;
}

TEST(ModerationStoreTest, SanctionsAndReferralsAreKeptReplacedListedAndLifted) {
    std::filesystem::remove(home() / "moderation.db");
    SqliteDatabase db(home() / "moderation.db");
    SqliteAccountStore accounts(db);
    SqliteChannelStore channels(db);
    SqliteModerationStore store(db);
    const Account alice = makeAccount(accounts, "Alice");
    const Account bob = makeAccount(accounts, "Bob");
    const Account carol = makeAccount(accounts, "carol");
    Channel lounge{0, "Lounge Room", "", alice.id, false, 10, 10, ""};
    ASSERT_TRUE(channels.create(lounge));

    EXPECT_FALSE(store.channelBan(lounge.id, bob.id));
    store.setChannelBan(lounge.id, bob.id, {"Alice", "spam", 100});
    store.setChannelBan(lounge.id, carol.id, {"Alice", "", 90});
    store.setChannelBan(lounge.id, bob.id, {"root", "more spam", 200});  // replaces
    EXPECT_EQ(store.channelBan(lounge.id, bob.id).value_or(Sanction{}).reason, "more spam");
    const auto bans = store.channelBans(lounge.id, 10);
    ASSERT_EQ(bans.size(), 2u);
    EXPECT_EQ(bans[0].target, "carol") << "oldest first";
    EXPECT_EQ(bans[1].target, "Bob");
    EXPECT_EQ(bans[1].sanction.by, "root");
    EXPECT_EQ(store.channelBans(lounge.id, 1).size(), 1u);
    EXPECT_TRUE(store.liftChannelBan(lounge.id, carol.id));
    EXPECT_FALSE(store.liftChannelBan(lounge.id, carol.id));

    store.setAccountBan(bob.id, {"root", "abuse", 300});
    store.setSuspension(carol.id, {"root", "", 301});
    EXPECT_TRUE(store.accountBan(bob.id));
    EXPECT_FALSE(store.accountBan(carol.id));
    EXPECT_TRUE(store.suspension(carol.id));
    EXPECT_EQ(store.accountBans(10).at(0).target, "Bob");
    EXPECT_EQ(store.suspensions(10).at(0).target, "carol");
    EXPECT_TRUE(store.liftSuspension(carol.id));
    EXPECT_FALSE(store.suspension(carol.id));

    // A channel's password and bans go with it.
    channels.setPasswordHash(lounge.id, "$argon2id$hash");
    EXPECT_EQ(channels.findByName("lounge room").value_or(Channel{}).passwordHash,
              "$argon2id$hash");
    channels.remove(lounge.id);
    EXPECT_TRUE(store.channelBans(lounge.id, 10).empty());

    // Ranges are read back whole; the sanctions keep them in memory for logins.
    store.setRangeBan("203.0.113.0/24", "Bob", {"root", "proxy", 400});
    Sanctions sanctions(store);
    EXPECT_EQ(sanctions.bannedRangeOf("203.0.113.9:4000"), "203.0.113.0/24");
    EXPECT_FALSE(sanctions.bannedRangeOf("203.0.114.9:4000"));
    Account staff = alice;
    staff.staffLevel = 1;
    EXPECT_EQ(sanctions.loginRefusal(staff, "203.0.113.9:4000"), "") << "staff are never kept out";
    EXPECT_NE(sanctions.loginRefusal(carol, "203.0.113.9:4000"), "");
    EXPECT_NE(sanctions.signUpRefusal("203.0.113.9:4000"), "");
    EXPECT_TRUE(sanctions.liftRange("203.0.113.0/24"));
    EXPECT_EQ(sanctions.loginRefusal(carol, "203.0.113.9:4000"), "");
    EXPECT_TRUE(store.rangeBans().empty());

    // The first referral counts; later ones do not replace it.
    EXPECT_TRUE(store.addReferral(bob.id, alice.id, "Lounge Room", 500));
    EXPECT_FALSE(store.addReferral(bob.id, carol.id, "Elsewhere", 600));
    EXPECT_TRUE(store.addReferral(carol.id, alice.id, "Lounge Room", 700));
    EXPECT_EQ(store.referrerOf(bob.id).value_or(Referral{}).referrer, "Alice");
    EXPECT_FALSE(store.referrerOf(alice.id));
    EXPECT_EQ(store.referralCount(alice.id), 2u);
    EXPECT_EQ(store.referredBy(alice.id, 10), (std::vector<std::string>{"Bob", "carol"}));
    EXPECT_EQ(store.referredBy(alice.id, 1), (std::vector<std::string>{"Bob"}));
}

}  // namespace
}  // namespace tavren::server
