// Finding, creating and running channels against the real server: the directory, creation with a
// password, invitations, every moderation right against every rank, bans and suspensions that
// outlive a restart, subnet bans, referrals and votes.
#include <regex>

#include "core/protocol/Fields.h"

#include "server/support/ServerFixture.h"

namespace tavren::test {
namespace {

constexpr protocol::CodePair kRemoved = out::kRemovedFromRoom;

class ModerationTest : public ServerFixture {
  protected:
    // A member who hears lines and what is said to them, not every member list.
    std::unique_ptr<RawClient> quietMember(const std::string& name) {
        auto client = member(name);
        client->ignore(out::kMemberList);
        return client;
    }
    static void join(RawClient& client, const std::string& channel) {
        client.send(in::kJoinRoom, channel);
        EXPECT_EQ(client.expect(out::kJoinedRoom).payload, channel);
    }
    static void say(RawClient& client, const std::string& channel, const std::string& text) {
        client.send(in::kRoomLine, channel + ":" + text);
    }
    // The next server line in that channel, without the "channel:**ChanHost:" in front.
    static std::string hostLine(RawClient& client, const std::string& channel) {
        const std::string payload = client.expect(out::kChannelHostMessage).payload;
        const std::string prefix = channel + ":**ChanHost:";
        EXPECT_EQ(payload.rfind(prefix, 0), 0u) << payload;
        return payload.substr(std::min(payload.size(), prefix.size()));
    }
    static std::string ask(RawClient& client, const std::string& channel,
                           const std::string& command) {
        say(client, channel, command);
        return hostLine(client, channel);
    }
    static std::string notice(RawClient& client) { return client.expect(kNotice).payload; }
    // Proves nothing else was on its way to the client: the next frame answers this request.
    static void expectNothingPending(RawClient& client) {
        client.send(in::kAskEmail, "");
        client.expect(out::kAccountInfo);
    }
    std::string loginRefusal(const std::string& name) {
        auto client = greet();
        client->send(in::kCredentials, name + ":secret1");
        return client->expect(kLoginResult).payload;
    }
};

TEST_F(ModerationTest, EachRightAgainstEachRank) {
    addAccount("root", "secret1", {"--staff", "3"});
    addAccount("admin", "secret1", {"--staff", "2"});
    addAccount("mod", "secret1", {"--staff", "1"});
    addMembers({"alice", "bob", "carol"});
    startServer();
    auto root = quietMember("root");
    auto admin = quietMember("admin");
    auto mod = quietMember("mod");
    auto alice = quietMember("alice");
    auto bob = quietMember("bob");
    auto carol = quietMember("carol");
    const std::string lounge = "Poker Lounge";
    alice->send(in::kCreateRoom, lounge + "::");
    EXPECT_EQ(alice->expect(out::kJoinedRoom).payload, lounge);
    EXPECT_EQ(hostLine(*alice, lounge), "You created this channel and host it.");
    for (RawClient* client : {root.get(), admin.get(), mod.get(), bob.get(), carol.get()}) {
        join(*client, lounge);
    }

    // A member has no right at all, whatever the target.
    EXPECT_EQ(ask(*bob, lounge, "/kick carol:spam"),
              "Only the channel host or staff can kick members.");
    EXPECT_EQ(ask(*bob, lounge, "/chanban carol:spam"),
              "Only the channel host or staff can ban members from this channel.");
    EXPECT_EQ(ask(*bob, lounge, "/ban carol:spam"),
              "Only staff of level 2 or 3 can ban members from every channel.");
    EXPECT_EQ(ask(*bob, lounge, "/suspend carol"),
              "Only staff of level 2 or 3 can suspend accounts.");
    EXPECT_EQ(ask(*bob, lounge, "/subban carol:x"),
              "Only staff of level 3 can ban address ranges.");
    EXPECT_EQ(ask(*bob, lounge, "/ipbans"), "Only the channel host or staff can see the bans.");
    EXPECT_EQ(ask(*bob, lounge, "/unban carol"), "Only the channel host or staff can lift bans.");

    // The host acts on members in the own channel only, never upwards, never on herself.
    EXPECT_EQ(ask(*alice, lounge, "/kick mod:x"),
              "You cannot kick mod: they rank as high as you or higher.");
    EXPECT_EQ(ask(*alice, lounge, "/kick alice"), "You cannot kick yourself.");
    EXPECT_EQ(ask(*alice, lounge, "/kick"), "Whom? Type /kick and a member's name.");
    EXPECT_EQ(ask(*alice, lounge, "/kick nobody:x"), "There is no member called nobody.");
    EXPECT_EQ(ask(*alice, lounge, "/ban bob:x"),
              "Only staff of level 2 or 3 can ban members from every channel.");
    say(*alice, lounge, "/kick carol: cheating: twice");
    EXPECT_EQ(carol->expect(kRemoved).payload,
              lounge + ":You were kicked by alice: cheating: twice");
    for (RawClient* client : {root.get(), admin.get(), mod.get(), alice.get(), bob.get()}) {
        EXPECT_EQ(hostLine(*client, lounge), "carol was kicked by alice: cheating: twice");
    }
    // Kicked, not banned: carol may come back. Her lines to the channel meanwhile are dropped.
    join(*carol, lounge);
    EXPECT_EQ(ask(*alice, lounge, "/kick dave"), "There is no member called dave.");
    join(*alice, "General");
    join(*bob, "General");
    EXPECT_EQ(ask(*alice, "General", "/kick bob"),
              "Only the channel host or staff can kick members.")
        << "an official channel has no host";

    // Staff rank: level 1 kicks hosts and members, not level 1 or 2; level 2 bans accounts and
    // suspends, level 3 alone bans ranges.
    EXPECT_EQ(ask(*mod, lounge, "/kick admin"),
              "You cannot kick admin: they rank as high as you or higher.");
    EXPECT_EQ(ask(*mod, lounge, "/suspend bob"),
              "Only staff of level 2 or 3 can suspend accounts.");
    EXPECT_EQ(ask(*admin, lounge, "/subban bob:x"),
              "Only staff of level 3 can ban address ranges.");
    EXPECT_EQ(ask(*admin, lounge, "/ban root:x"),
              "You cannot ban root: they rank as high as you or higher.");
    EXPECT_EQ(ask(*root, lounge, "/subban mod:x"),
              "mod is staff, and address bans never keep staff out.");
    say(*mod, lounge, "/kick alice:host or not");
    EXPECT_EQ(alice->expect(kRemoved).payload, lounge + ":You were kicked by mod: host or not");
    EXPECT_EQ(hostLine(*bob, lounge), "alice was kicked by mod: host or not");
    EXPECT_EQ(hostLine(*mod, lounge), "alice was kicked by mod: host or not");
    say(*bob, lounge, "/ipbans");
    EXPECT_EQ(hostLine(*bob, lounge), "Only the channel host or staff can see the bans.");
    EXPECT_EQ(ask(*mod, lounge, "/ipbans"), "Nobody is banned from this channel.");
    EXPECT_EQ(hostLine(*mod, lounge), "Nobody is banned from every channel.");
    EXPECT_EQ(hostLine(*mod, lounge), "No account is suspended.");
    expectNothingPending(*mod);
}

TEST_F(ModerationTest, BansAndSuspensionsTakeEffectAtOnceAndOutliveARestart) {
    addAccount("root", "secret1", {"--staff", "3"});
    addMembers({"bob", "carol", "dave"});
    startServer();
    auto root = quietMember("root");
    auto bob = quietMember("bob");
    auto carol = quietMember("carol");
    auto dave = quietMember("dave");
    const std::string owls = "Night Owls";
    for (RawClient* client : {bob.get(), carol.get(), root.get()}) {
        join(*client, owls);
    }
    join(*dave, "General");
    join(*dave, "Dave's Den");
    join(*root, "General");

    // A channel ban removes the member and keeps them out of that channel only.
    say(*root, owls, "/chanban carol:rude");
    EXPECT_EQ(carol->expect(kRemoved).payload,
              owls + ":You were banned from this channel by root: rude");
    EXPECT_EQ(hostLine(*bob, owls), "carol was banned from this channel by root: rude");
    EXPECT_EQ(hostLine(*root, owls), "carol was banned from this channel by root: rude");
    carol->send(in::kJoinRoom, "night owls");
    EXPECT_EQ(notice(*carol), "You cannot join \"night owls\": you are banned from this channel.");
    join(*carol, "General");

    // A ban from every channel removes the member from each of them and keeps them out of all,
    // new ones included; the member stays logged in.
    say(*root, owls, "/ban dave");
    EXPECT_EQ(dave->expect(kRemoved).payload,
              "General:You were banned from every channel by root: No reason given.");
    EXPECT_EQ(dave->expect(kRemoved).payload,
              "Dave's Den:You were banned from every channel by root: No reason given.");
    EXPECT_EQ(hostLine(*root, "General"),
              "dave was banned from every channel by root: No reason given.");
    EXPECT_EQ(hostLine(*root, owls), "dave was banned from every channel by root: No reason given.")
        << "told where it was typed too";
    for (const char* where : {"General", "Brand New Room"}) {
        dave->send(in::kJoinRoom, where);
        EXPECT_EQ(notice(*dave), std::string("You cannot join \"") + where +
                                     "\": you are banned from every channel of this server.");
    }
    dave->send(in::kCreateRoom, "Dave's Return::");
    EXPECT_EQ(notice(*dave),
              "You cannot create \"Dave's Return\": you are banned from every channel of this "
              "server.");

    // A suspension ends the session at once, and the login refusal says why.
    say(*root, owls, "/suspend bob");
    EXPECT_EQ(notice(*bob),
              "Your account has been suspended by root. You cannot log in until the suspension "
              "is lifted.");
    EXPECT_TRUE(bob->waitClosed());
    EXPECT_EQ(hostLine(*root, owls), "bob's account was suspended by root.");
    const std::string suspended =
        "Your account is suspended, so you cannot log in. Ask the staff of this server if you "
        "think this is a mistake.";
    EXPECT_EQ(loginRefusal("bob"), suspended);

    // All of it holds after the server restarts.
    EXPECT_EQ(server_->stop(), 0);
    startServer();
    EXPECT_EQ(loginRefusal("BOB"), suspended);
    carol = quietMember("carol");
    carol->send(in::kJoinRoom, owls);
    EXPECT_EQ(notice(*carol), "You cannot join \"Night Owls\": you are banned from this channel.");
    dave = quietMember("dave");
    dave->send(in::kJoinRoom, "General");
    EXPECT_EQ(notice(*dave),
              "You cannot join \"General\": you are banned from every channel of this server.");
    root = quietMember("root");
    join(*root, owls);
    const std::regex listed("  (carol|dave|bob) - by root on \\d{4}-\\d\\d-\\d\\d(: .*)?");
    const std::vector<std::string> expected = {
        "Banned from this channel:", "carol", "Banned from every channel:", "dave",
        "Suspended accounts:",       "bob",   "No address range is banned."};
    say(*root, owls, "/ipbans");
    for (const std::string& wanted : expected) {
        const std::string got = hostLine(*root, owls);
        if (wanted.find(' ') == std::string::npos) {
            EXPECT_TRUE(std::regex_match(got, listed)) << got;
            EXPECT_EQ(got.substr(2, wanted.size()), wanted);
        } else {
            EXPECT_EQ(got, wanted);
        }
    }

    // Lifted, each lets the member back at once.
    EXPECT_EQ(ask(*root, owls, "/unban carol"),
              "carol may come back: root lifted the ban from this channel.");
    join(*carol, owls);
    EXPECT_EQ(ask(*root, owls, "/unban dave"),
              "dave may come back: root lifted the ban from every channel.");
    join(*dave, "General");
    EXPECT_EQ(ask(*root, owls, "/unban dave"), "dave has no ban here that you may lift.");
    EXPECT_EQ(ask(*root, owls, "/unsuspend bob"),
              "bob's account is no longer suspended; they can log in.");
    EXPECT_EQ(ask(*root, owls, "/unsuspend bob"), "bob's account is not suspended.");
    quietMember("bob");
}

TEST_F(ModerationTest, ASubnetBanKeepsEveryoneButStaffFromTheRangeOut) {
    addAccount("root", "secret1", {"--staff", "3"});
    addAccount("mod", "secret1", {"--staff", "1"});
    addMembers({"bob", "carol"});
    startServer();
    auto root = quietMember("root");
    auto mod = quietMember("mod");
    auto bob = quietMember("bob");
    auto carol = quietMember("carol");
    for (RawClient* client : {root.get(), mod.get(), bob.get(), carol.get()}) {
        join(*client, "General");
    }
    EXPECT_EQ(ask(*mod, "General", "/subban bob:proxy"),
              "Only staff of level 3 can ban address ranges.");
    EXPECT_EQ(ask(*root, "General", "/subban nobody"), "There is no member called nobody.");

    // Everybody here connects from 127.0.0.1: bob and carol go, the staff stay.
    say(*root, "General", "/subban bob:proxy flood");
    for (RawClient* client : {bob.get(), carol.get()}) {
        EXPECT_EQ(notice(*client),
                  "You have been logged out: your address range is banned from this server.");
        EXPECT_TRUE(client->waitClosed());
    }
    EXPECT_EQ(hostLine(*root, "General"), "bob was banned from this server by root: proxy flood");
    EXPECT_EQ(hostLine(*root, "General"),
              "The address range 127.0.0.0/24 is banned; 2 members from it logged out.");
    EXPECT_EQ(hostLine(*mod, "General"), "bob was banned from this server by root: proxy flood");
    EXPECT_EQ(loginRefusal("carol"), "Logins from your address are banned on this server.");
    auto signUp = connect();
    signUp->send(in::kVersionBeforeSignUp, "1.0.0");
    signUp->send(in::kRegisterAccount, "newbie:secret1:newbie@example.org");
    EXPECT_EQ(signUp->expect(kSignUpResult).payload,
              "Account Creation Error!:Sign-ups from your address are banned on this server.");
    mod = quietMember("mod");  // staff log in from the banned range all the same

    EXPECT_EQ(server_->stop(), 0);
    startServer();
    EXPECT_EQ(loginRefusal("bob"), "Logins from your address are banned on this server.");
    root = quietMember("root");
    join(*root, "General");
    say(*root, "General", "/ipbans");
    EXPECT_EQ(hostLine(*root, "General"), "Nobody is banned from this channel.");
    EXPECT_EQ(hostLine(*root, "General"), "Nobody is banned from every channel.");
    EXPECT_EQ(hostLine(*root, "General"), "No account is suspended.");
    EXPECT_EQ(hostLine(*root, "General"), "Banned address ranges:");
    EXPECT_EQ(hostLine(*root, "General").rfind("  127.0.0.0/24 (bob) - by root on ", 0), 0u);
    EXPECT_EQ(ask(*root, "General", "/unban 127.0.0.0/16"),
              "There is no member called 127.0.0.0/16.");
    EXPECT_EQ(ask(*root, "General", "/unban 127.0.0.9"),
              "The ban on the address range 127.0.0.0/24 is lifted.");
    quietMember("carol");
}

TEST_F(ModerationTest, PasswordChannelsInvitationsReferralsAndTheDirectory) {
    addMembers({"alice", "bob", "carol", "dave"});
    startServer();
    auto alice = quietMember("alice");
    auto bob = quietMember("bob");
    auto carol = quietMember("carol");
    const std::string garden = "Secret Garden";

    // Creating: the name rules (a five-character name is too short), a taken name, and the
    // password and topic rules, each a notice naming the channel.
    const std::pair<std::string, std::string> refused[] = {
        {"Short:pw:", "You cannot create \"Short\": a channel name has 6 to 32 characters."},
        {"Semi;colon::", "You cannot create \"Semi;colon\": a channel name holds no ':' or ';'."},
        {"General::", "You cannot create \"General\": a channel of that name exists already."},
        {"Long Password:" + std::string(33, 'p') + ":",
         "You cannot create \"Long Password\": a channel password has at most 32 characters."},
    };
    for (const auto& [payload, expected] : refused) {
        alice->send(in::kCreateRoom, payload);
        EXPECT_EQ(notice(*alice), expected);
    }
    alice->send(in::kCreateRoom, "  " + garden + " :rose: Members: only ");
    EXPECT_EQ(alice->expect(out::kJoinedRoom).payload, garden);
    EXPECT_EQ(hostLine(*alice, garden), "Topic: Members: only");
    EXPECT_EQ(hostLine(*alice, garden),
              "You created this channel and host it. Others join it with its password or an "
              "invitation.");
    alice->send(in::kCreateRoom, "secret GARDEN::");
    EXPECT_EQ(notice(*alice),
              "You cannot create \"secret GARDEN\": a channel of that name exists already.");

    // The server asks for the password with the join answer; a wrong one is refused.
    bob->send(in::kJoinRoom, "secret garden");
    EXPECT_EQ(bob->expect(out::kJoinedRoom).payload, garden + ":This channel asks for a password.");
    bob->send(in::kJoinRoom, "secret garden:tulip");
    EXPECT_EQ(bob->expect(out::kJoinedRoom).payload,
              garden + ":The password was wrong. Try again.");

    // Only a member of the channel invites, and only members who are online.
    carol->send(in::kInviteToRoom, "bob;" + garden);
    EXPECT_EQ(notice(*carol), "You can invite members only to a channel you are in.");
    for (const auto& [payload, expected] : std::vector<std::pair<std::string, std::string>>{
             {"alice;" + garden, "You cannot invite yourself."},
             {"nobody;" + garden, "There is no member called nobody."},
             {"dave;" + garden, "dave is not online; invitations reach members who are."},
             {";" + garden, "Whom? Give the name of the member to invite."}}) {
        alice->send(in::kInviteToRoom, payload);
        EXPECT_EQ(notice(*alice), expected);
    }
    alice->send(in::kInviteToRoom, " BOB ;secret garden");
    EXPECT_EQ(bob->expect(out::kRoomInvitation).payload, "Invite: alice;" + garden);
    // The invitation lets bob in without the password, once.
    join(*bob, garden);
    EXPECT_EQ(hostLine(*bob, garden), "Topic: Members: only");
    alice->send(in::kInviteToRoom, "bob;" + garden);
    EXPECT_EQ(notice(*alice), "bob is in Secret Garden already.");
    bob->send(in::kLeaveRoom, garden);
    bob->send(in::kJoinRoom, garden);
    EXPECT_EQ(bob->expect(out::kJoinedRoom).payload, garden + ":This channel asks for a password.");
    // With the right password anybody gets in.
    carol->send(in::kJoinRoom, garden + ":rose");
    EXPECT_EQ(carol->expect(out::kJoinedRoom).payload, garden);
    EXPECT_EQ(hostLine(*carol, garden), "Topic: Members: only");

    // The first invitation a member accepted names the referrer.
    EXPECT_TRUE(
        std::regex_match(ask(*carol, garden, "/referal BOB"),
                         std::regex("bob was referred by alice \\(invited to Secret Garden on "
                                    "\\d{4}-\\d\\d-\\d\\d\\)\\. bob has referred nobody\\.")));
    EXPECT_EQ(ask(*carol, garden, "/referal alice"),
              "alice was not referred by anyone. alice has referred 1 member: bob.");

    // The directory: channels in use first, the busiest first, then the rest, official first.
    join(*bob, "General");
    bob->send(in::kAskChannelDirectory, "Get");
    const auto records = protocol::SplitRecords(bob->expect(out::kChannelDirectory).payload);
    ASSERT_EQ(records.size(), 3u);
    EXPECT_EQ(records[0],
              (std::vector<std::string>{garden, "2", "Members: only", "False", "True"}));
    EXPECT_EQ(records[1], (std::vector<std::string>{"General", "1", "", "True", "False"}));
    EXPECT_EQ(records[2],
              (std::vector<std::string>{"Tavren General Chat", "0", "", "True", "False"}));
    expectNothingPending(*alice);
}

TEST_F(ModerationTest, AVoteCountsEachMemberOnceAndEndsWhenEveryoneHasAnswered) {
    addMembers({"alice", "bob", "carol"});
    startServer();
    auto alice = quietMember("alice");
    auto bob = quietMember("bob");
    auto carol = quietMember("carol");
    const std::string hall = "Vote Hall";
    for (RawClient* client : {alice.get(), bob.get(), carol.get()}) {
        join(*client, hall);
    }
    EXPECT_EQ(ask(*bob, hall, "/yes"),
              "There is no vote open in this channel. Start one with /vote and a question.");
    EXPECT_EQ(ask(*bob, hall, "/vote"),
              "What shall the channel vote on? Type /vote and a yes-or-no question.");
    say(*alice, hall, "/vote Pizza: tonight?");
    for (RawClient* client : {alice.get(), bob.get(), carol.get()}) {
        EXPECT_EQ(hostLine(*client, hall),
                  "alice asks: Pizza: tonight? Answer with /yes or /no within 60 seconds.");
    }
    EXPECT_EQ(ask(*carol, hall, "/vote Another?"),
              "A vote is open already: Pizza: tonight? Answer it with /yes or /no.");
    EXPECT_EQ(ask(*bob, hall, "/YES"), "Your answer is counted: yes.");
    EXPECT_EQ(ask(*bob, hall, "/no"), "You have answered this vote already.");
    EXPECT_EQ(ask(*bob, hall, "/yes"), "You have answered this vote already.");
    EXPECT_EQ(ask(*alice, hall, "/no"), "Your answer is counted: no.");
    say(*carol, hall, "/yes");
    EXPECT_EQ(hostLine(*carol, hall), "Your answer is counted: yes.");
    for (RawClient* client : {alice.get(), bob.get(), carol.get()}) {
        EXPECT_EQ(hostLine(*client, hall), "Vote result: Pizza: tonight? Yes: 2, No: 1.");
    }
    EXPECT_EQ(ask(*bob, hall, "/no"),
              "There is no vote open in this channel. Start one with /vote and a question.");
}

TEST_F(ModerationTest, AVoteNotEveryoneAnswersEndsWhenItsTimeIsUp) {
    addMembers({"alice", "bob"});
    startServer({"--vote-time", "0.3"});
    auto alice = quietMember("alice");
    auto bob = quietMember("bob");
    const std::string hall = "Vote Hall";
    join(*alice, hall);
    join(*bob, hall);
    say(*alice, hall, "/vote Stay?");
    for (RawClient* client : {alice.get(), bob.get()}) {
        EXPECT_EQ(hostLine(*client, hall),
                  "alice asks: Stay? Answer with /yes or /no within 1 second.");
        EXPECT_EQ(hostLine(*client, hall), "Vote result: Stay? Yes: 0, No: 0.");
    }
    // The next vote may start at once.
    say(*bob, hall, "/vote Go?");
    EXPECT_EQ(hostLine(*alice, hall), "bob asks: Go? Answer with /yes or /no within 1 second.");
}

}  // namespace
}  // namespace tavren::test
