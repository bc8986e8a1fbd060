// Channels against the real server: joining (and so creating), member lists, lines, leaving in
// every way, what survives a restart, and every bound a member could push against.
#include <regex>
#include <thread>
#include <vector>

#include "server/support/ServerFixture.h"

namespace tavren::test {
namespace {

class ChannelTest : public ServerFixture {
  protected:
    // Joins and checks the confirmation, which spells the channel as it was created.
    static void join(RawClient& client, const std::string& requested, const std::string& spelled) {
        client.send(in::kJoinRoom, requested);
        EXPECT_EQ(client.expect(out::kJoinedRoom).payload, spelled) << requested;
    }
    static std::string list(RawClient& client) { return client.expect(out::kMemberList).payload; }
    static std::string line(RawClient& client) {
        return client.expect(out::kChannelHostMessage).payload;
    }
    static void say(RawClient& client, const std::string& channel, const std::string& text) {
        client.send(in::kRoomLine, channel + ":" + text);
    }
    // Proves nothing else was on its way to the client: the next frame answers this request.
    static void expectNothingPending(RawClient& client) {
        client.send(in::kAskEmail, "");
        client.expect(out::kAccountInfo);
    }
};

TEST_F(ChannelTest, JoinersSeeOneListInRankOrderAndLinesReachEveryoneInOrder) {
    addAccount("root", "secret1", {"--staff", "3"});
    addAccount("mod", "secret1", {"--staff", "1"});
    addMembers({"alice", "bob", "Carol"});
    startServer();
    auto alice = member("alice");
    // Joining a channel that does not exist creates it, with the joiner as its host.
    join(*alice, "  Lounge Room ", "Lounge Room");
    EXPECT_EQ(list(*alice), "Lounge Room:@alice;");

    // Each join's list reaches everyone in the channel: staff from the highest, the host, then
    // the rest by name whatever its case.
    const std::vector<std::pair<std::string, std::string>> joins = {
        {"Carol", "Lounge Room:@alice;Carol;"},
        {"bob", "Lounge Room:@alice;bob;Carol;"},
        {"mod", "Lounge Room:@\xB9mod;@alice;bob;Carol;"},
        {"root", "Lounge Room:@\xB3root;@\xB9mod;@alice;bob;Carol;"},
    };
    std::vector<std::unique_ptr<RawClient>> others;
    std::vector<RawClient*> everyone{alice.get()};
    for (const auto& [name, expected] : joins) {
        others.push_back(member(name));
        join(*others.back(), "LOUNGE room", "Lounge Room");
        everyone.push_back(others.back().get());
        for (RawClient* client : everyone) {
            EXPECT_EQ(list(*client), expected) << name;
        }
    }

    // Lines reach everyone, the sender included, byte for byte and in the order sent.
    RawClient& bob = *others[1];
    const std::vector<std::string> texts = {"hello", "two: colons: here", "\x01 not a format",
                                            "caf\xe9 <b>markup</b>"};
    for (const std::string& text : texts) {
        say(bob, "lounge ROOM", text);
    }
    for (RawClient* client : everyone) {
        for (const std::string& text : texts) {
            EXPECT_EQ(line(*client), "Lounge Room:bob:" + text);
        }
    }

    // A nickname format travels in the sender field after U+0001; a ":" in one is refused, and
    // an empty one means none.
    alice->send(in::kNicknameFormat, "255;0;True;False;False;3;Comic: Sans");
    EXPECT_NE(alice->expect(kNotice).payload.find("':'"), std::string::npos);
    const std::string format = "255;16711680;True;False;False;3;Comic Sans MS";
    alice->send(in::kNicknameFormat, format);
    EXPECT_EQ(alice->expect(out::kAccountRefresh).payload, "alice;0;" + format);
    alice->send(in::kAccountRefreshOk, "OK");
    say(*alice, "Lounge Room", "styled");
    for (RawClient* client : everyone) {
        EXPECT_EQ(line(*client), "Lounge Room:alice\x01" + format + ":styled");
    }
    alice->send(in::kNicknameFormat, "");
    alice->expect(out::kAccountRefresh);
    say(*alice, "Lounge Room", "plain");
    for (RawClient* client : everyone) {
        EXPECT_EQ(line(*client), "Lounge Room:alice:plain");
    }
}

TEST_F(ChannelTest, LeavingLeaveAllADroppedLinkAndASecondLoginUpdateTheLists) {
    addMembers({"alice", "bob", "carol"});
    startServer();
    auto alice = member("alice");
    auto bob = member("bob");
    auto carol = member("carol");
    for (RawClient* client : {alice.get(), bob.get(), carol.get()}) {
        join(*client, "general", "General");
    }
    // An official channel has no host.
    EXPECT_EQ(list(*alice), "General:alice;");
    EXPECT_EQ(list(*alice), "General:alice;bob;");
    EXPECT_EQ(list(*bob), "General:alice;bob;");
    for (RawClient* client : {alice.get(), bob.get(), carol.get()}) {
        EXPECT_EQ(list(*client), "General:alice;bob;carol;");
    }

    // Bob leaves: the others hear of it, bob hears nothing, and his lines there are dropped.
    bob->send(in::kLeaveRoom, "GENERAL");
    EXPECT_EQ(list(*alice), "General:alice;carol;");
    EXPECT_EQ(list(*carol), "General:alice;carol;");
    say(*bob, "General", "anyone there?");
    bob->send(in::kLeaveRoom, "General");          // not in it any more
    bob->send(in::kLeaveRoom, "Never Joined It");  // never was
    say(*carol, "General", "still here");
    EXPECT_EQ(line(*alice), "General:carol:still here");
    EXPECT_EQ(line(*carol), "General:carol:still here");
    expectNothingPending(*bob);

    // "leaveall" leaves every channel in the order they were joined.
    join(*carol, "Second Room", "Second Room");
    EXPECT_EQ(list(*carol), "Second Room:@carol;");
    join(*alice, "Second Room", "Second Room");
    EXPECT_EQ(list(*alice), "Second Room:@carol;alice;");
    EXPECT_EQ(list(*carol), "Second Room:@carol;alice;");
    carol->send(in::kRoomWindowRequest, "LEAVEALL");  // only the exact word counts
    carol->send(in::kRoomWindowRequest, "leaveall");
    EXPECT_EQ(list(*alice), "General:alice;");
    EXPECT_EQ(list(*alice), "Second Room:alice;");

    // A connection that drops leaves its channels as "leaveall" does.
    join(*carol, "General", "General");
    EXPECT_EQ(list(*carol), "General:alice;carol;");
    EXPECT_EQ(list(*alice), "General:alice;carol;");
    carol.reset();
    EXPECT_EQ(list(*alice), "General:alice;");

    // A second login of alice replaces the first, whose channels are left cleanly; the new
    // session starts in none of them.
    join(*bob, "General", "General");
    EXPECT_EQ(list(*bob), "General:alice;bob;");
    EXPECT_EQ(list(*alice), "General:alice;bob;");
    auto again = member("ALICE");
    EXPECT_NE(alice->expect(kNotice).payload.find("another place"), std::string::npos);
    EXPECT_TRUE(alice->waitClosed());
    EXPECT_EQ(list(*bob), "General:bob;");
    say(*again, "General", "not in it yet");
    join(*again, "General", "General");
    EXPECT_EQ(list(*again), "General:alice;bob;");
    EXPECT_EQ(list(*bob), "General:alice;bob;");
    say(*again, "General", "back");
    EXPECT_EQ(line(*bob), "General:alice:back");
}

TEST_F(ChannelTest, ChannelsTopicsAndHostsSurviveARestart) {
    addMembers({"alice", "bob"});
    const std::vector<std::string> options = {"--channel", "Help Desk", "--channel", "HELP DESK"};
    startServer(options);
    {
        auto alice = member("alice");
        auto bob = member("bob");
        join(*alice, "Alice's Place", "Alice's Place");
        EXPECT_EQ(list(*alice), "Alice's Place:@alice;");
        join(*bob, "alice's place", "Alice's Place");
        EXPECT_EQ(list(*bob), "Alice's Place:@alice;bob;");
        EXPECT_EQ(list(*alice), "Alice's Place:@alice;bob;");

        say(*bob, "Alice's Place", "/topic");
        EXPECT_EQ(line(*bob), "Alice's Place:**ChanHost:This channel has no topic.");
        say(*bob, "Alice's Place", "/topic Mine now");
        EXPECT_EQ(line(*bob),
                  "Alice's Place:**ChanHost:Only the channel host or staff can change the topic.");
        say(*alice, "Alice's Place", "/TOPIC " + std::string(201, 't'));
        EXPECT_EQ(line(*alice),
                  "Alice's Place:**ChanHost:Your topic was not set: a topic holds at most 200 "
                  "characters.");
        say(*alice, "Alice's Place", "/topic   Welcome: all  ");
        for (RawClient* client : {alice.get(), bob.get()}) {
            EXPECT_EQ(line(*client),
                      "Alice's Place:**ChanHost:alice changed the topic to: Welcome: all");
        }
    }
    ASSERT_EQ(server_->stop(), 0);
    startServer(options);

    // The channel, its spelling, host and topic are all still there; its members are not.
    auto bob = member("bob");
    join(*bob, "ALICE'S PLACE", "Alice's Place");
    EXPECT_EQ(list(*bob), "Alice's Place:bob;");
    EXPECT_EQ(line(*bob), "Alice's Place:**ChanHost:Topic: Welcome: all");
    auto alice = member("alice");
    join(*alice, "Alice's Place", "Alice's Place");
    EXPECT_EQ(list(*alice), "Alice's Place:@alice;bob;");
    EXPECT_EQ(line(*alice), "Alice's Place:**ChanHost:Topic: Welcome: all");
    EXPECT_EQ(list(*bob), "Alice's Place:@alice;bob;");
    // The operator's own channel exists without anybody having created it, so it has no host.
    join(*bob, "help desk", "Help Desk");
    EXPECT_EQ(list(*bob), "Help Desk:bob;");
    say(*bob, "Help Desk", "/stats");
    EXPECT_NE(line(*bob).find("Channels: 4 (2 in use)."), std::string::npos);
}

TEST_F(ChannelTest, NamesAreCheckedAndEveryChannelBoundHolds) {
    addMembers({"alice", "bob", "carol"});
    startServer({"--max-hosted-channels", "2", "--max-channels-per-member", "3",
                 "--max-channel-members", "2", "--frame-rate", "100000", "--flood-limit", "100000",
                 "--queue-limit", "10000"});
    auto alice = member("alice");
    const std::string kRefusal = "You cannot join \"";
    for (const std::string& bad :
         {std::string(), std::string("     "), std::string("Short"), std::string(33, 'n'),
          std::string("Colon:Room"), std::string("Semi;Room"), std::string("@Marked Room"),
          std::string("*Starred Room"), std::string("Ctrl\x01Room"), std::string("Undef\x81Room"),
          std::string("Ends In\xA0"), std::string(2000, 'x')}) {
        alice->send(in::kJoinRoom, bad);
        const std::string notice = alice->expect(kNotice).payload;
        EXPECT_EQ(notice.rfind(kRefusal, 0), 0u) << notice;
        EXPECT_LT(notice.size(), 200u) << "a long name is not echoed whole";
        EXPECT_EQ(notice.find('\x01'), std::string::npos) << "nor are control characters";
    }

    // Hosting: two channels, not a third; an existing channel is no new one to host.
    join(*alice, "First Room", "First Room");
    list(*alice);
    join(*alice, "Second Room", "Second Room");
    list(*alice);
    alice->send(in::kJoinRoom, "Third Room");
    EXPECT_EQ(alice->expect(kNotice).payload,
              "You cannot join \"Third Room\": you host 2 channels already, the most one member "
              "may.");
    join(*alice, "General", "General");
    list(*alice);
    // Three channels at once, not a fourth.
    alice->send(in::kJoinRoom, "Tavren General Chat");
    EXPECT_EQ(alice->expect(kNotice).payload,
              "You cannot join \"Tavren General Chat\": you are in 3 channels already; leave one "
              "first.");

    // Two members to a channel; joining again is answered again and changes nothing.
    auto bob = member("bob");
    join(*bob, "First Room", "First Room");
    EXPECT_EQ(list(*bob), "First Room:@alice;bob;");
    EXPECT_EQ(list(*alice), "First Room:@alice;bob;");
    auto carol = member("carol");
    carol->send(in::kJoinRoom, "first room");
    EXPECT_EQ(carol->expect(kNotice).payload,
              "You cannot join \"first room\": the channel is full.");
    join(*alice, "FIRST ROOM", "First Room");
    EXPECT_EQ(list(*alice), "First Room:@alice;bob;");
    expectNothingPending(*bob);

    // Thousands of joins in one burst are each answered and leave nothing behind.
    std::string burst;
    for (int i = 0; i < 3000; ++i) {
        burst += protocol::EncodeFrame(in::kJoinRoom, "Flood Room " + std::to_string(i));
    }
    carol->sendRaw(burst);
    int joined = 0;
    int refused = 0;
    while (joined + refused < 3000) {
        const auto frame = carol->next();
        ASSERT_TRUE(frame);
        if (frame->code == out::kJoinedRoom) {
            ++joined;
        } else if (frame->code == kNotice) {
            ++refused;
        }
    }
    EXPECT_EQ(joined, 2) << "hosting two, in two";
    expectNothingPending(*carol);
    expectNothingPending(*alice);
}

TEST_F(ChannelTest, LinesAreBoundedAndMetered) {
    addMembers({"alice", "bob"});
    startServer({"--flood-lines", "4", "--flood-interval", "3600"});
    auto alice = member("alice");
    EXPECT_EQ(lastFloodMeters_, "4;3600000") << "the client's meter matches";
    auto bob = member("bob");
    join(*alice, "Meter Room", "Meter Room");
    list(*alice);
    join(*bob, "Meter Room", "Meter Room");
    list(*bob);
    list(*alice);

    // The longest line goes through whole; one byte more is refused, not cut, and costs no line.
    say(*alice, "Meter Room", std::string(2048, 'x'));
    say(*alice, "Meter Room", std::string(2049, 'y'));
    EXPECT_EQ(line(*alice), "Meter Room:alice:" + std::string(2048, 'x'));
    EXPECT_EQ(line(*alice),
              "Meter Room:**ChanHost:Your line was not sent: a line holds at most 2048 "
              "characters.");
    EXPECT_EQ(line(*bob), "Meter Room:alice:" + std::string(2048, 'x'));
    // Empty lines are ignored and cost nothing either.
    say(*alice, "Meter Room", "");
    alice->send(in::kRoomLine, "Meter Room");

    // Three lines are left in hand; the fourth, and a command, find it empty.
    for (const char* text : {"one", "two", "three", "four", "/time"}) {
        say(*alice, "Meter Room", text);
    }
    for (const char* text : {"one", "two", "three"}) {
        EXPECT_EQ(line(*alice), std::string("Meter Room:alice:") + text);
        EXPECT_EQ(line(*bob), std::string("Meter Room:alice:") + text);
    }
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(line(*alice),
                  "Meter Room:**ChanHost:You are sending lines too fast. Wait a moment, then try "
                  "again.");
    }
    // Each member has a hand of their own.
    say(*bob, "Meter Room", "mine");
    EXPECT_EQ(line(*bob), "Meter Room:bob:mine");
    EXPECT_EQ(line(*alice), "Meter Room:bob:mine");
}

TEST_F(ChannelTest, ServerCommandsAnswerTheMemberWhoAsked) {
    addAccount("root", "secret1", {"--staff", "2"});
    addMembers({"alice", "bob"});
    startServer({"--motd", "Be kind.", "--flood-lines", "100"});
    auto alice = member("alice");
    auto root = member("root");
    join(*alice, "Command Room", "Command Room");
    list(*alice);
    join(*root, "Command Room", "Command Room");
    list(*root);
    list(*alice);
    join(*root, "Other Room", "Other Room");
    list(*root);

    const std::string prefix = "Command Room:**ChanHost:";
    const auto ask = [&](const std::string& command) {
        say(*alice, "Command Room", command);
        const std::string answer = line(*alice);
        EXPECT_EQ(answer.rfind(prefix, 0), 0u) << answer;
        return answer.substr(std::min(answer.size(), prefix.size()));
    };
    EXPECT_EQ(ask("/motd"), "Be kind.");
    EXPECT_TRUE(std::regex_match(ask("/TIME"),
                                 std::regex("Server time: (Mon|Tue|Wed|Thu|Fri|Sat|Sun), \\d\\d "
                                            "[A-Z][a-z][a-z] \\d{4} \\d\\d:\\d\\d:\\d\\d UTC")));
    EXPECT_TRUE(std::regex_match(
        ask("/stats"), std::regex("Members online: 2\\. Channels: 4 \\(2 in use\\)\\. Server up "
                                  "0d 0h \\d+m\\.")));
    EXPECT_EQ(ask("/info ROOT").substr(0, 19), "root: member since ");
    const std::regex where(
        "root: member since \\d{4}-\\d\\d-\\d\\d, online in Command Room, "
        "Other Room, staff level 2");
    EXPECT_TRUE(std::regex_match(ask("/info root"), where));
    EXPECT_TRUE(std::regex_match(ask("/info bob"),
                                 std::regex("bob: member since \\d{4}-\\d\\d-\\d\\d, offline")));
    EXPECT_EQ(ask("/info nobody"), "There is no member called nobody.");
    EXPECT_EQ(ask("/info"), "Whom? Type /info and a member's name.");
    EXPECT_EQ(ask("/info a\x01" + std::string(100, 'b')),
              "There is no member called a?" + std::string(38, 'b') + ".");
    EXPECT_EQ(ask("/kickout bob:bye"),
              "Unknown command \"/kickout\". Type /help for the commands this server knows.");
    EXPECT_EQ(ask("/" + std::string(500, 'y')), "Unknown command \"/" + std::string(39, 'y') +
                                                    "\". Type /help for the commands this server "
                                                    "knows.");
    say(*alice, "Command Room", "/help");
    EXPECT_EQ(line(*alice), prefix + "Commands of this server:");
    for (const char* command :
         {"/topic", "/topic TEXT", "/motd", "/stats", "/time", "/info NAME", "/referal NAME",
          "/vote QUESTION", "/kick NAME:REASON", "/chanban NAME:REASON", "/ban NAME:REASON",
          "/suspend NAME", "/subban NAME:REASON", "/unban NAME or /unban RANGE", "/unsuspend NAME",
          "/ipbans", "/help"}) {
        EXPECT_EQ(line(*alice).rfind(prefix + command + " - ", 0), 0u) << command;
    }

    // Staff may set any channel's topic; everyone in it hears. Root heard none of the above.
    say(*root, "Command Room", "/topic Staff were here");
    EXPECT_EQ(line(*root), prefix + "root changed the topic to: Staff were here");
    EXPECT_EQ(line(*alice), prefix + "root changed the topic to: Staff were here");
    EXPECT_EQ(ask("/topic"), "Topic: Staff were here");
    expectNothingPending(*root);
}

TEST_F(ChannelTest, AMemberWhoDoesNotReadIsDroppedWhileTheOthersReadOn) {
    addMembers({"alice", "bob", "sluggard"});
    startServer({"--queue-limit", "256", "--send-buffer", "4096", "--frame-rate", "100000",
                 "--flood-limit", "100000", "--flood-lines", "100000", "--ping-interval", "30"});
    auto alice = member("alice");
    auto bob = member("bob");
    auto sluggard = greet("1.0.0", 2048);
    sluggard->send(in::kCredentials, "sluggard:secret1");
    sluggard->expect(out::kAccountRefresh);
    sluggard->send(in::kAccountRefreshOk, "OK");
    // From here on the lists are not what is checked.
    alice->ignore(out::kMemberList);
    bob->ignore(out::kMemberList);
    join(*alice, "Busy Room", "Busy Room");
    join(*bob, "Busy Room", "Busy Room");
    sluggard->send(in::kJoinRoom, "Busy Room");

    // Alice floods the channel, reading her own echo as she goes; bob reads on his own thread;
    // the sluggard reads nothing at all.
    constexpr int kLines = 600;  // the sluggard is full after some 280
    const auto text = [](int i) { return std::to_string(i) + std::string(1000, '.'); };
    std::vector<std::string> bobHeard;
    std::thread bobReads([&] {
        while (static_cast<int>(bobHeard.size()) < kLines) {
            auto frame = bob->next();
            if (!frame) {
                return;
            }
            bobHeard.push_back(frame->payload);
        }
    });
    bool echoed = true;
    for (int sent = 0; sent < kLines && echoed; sent += 50) {
        std::string chunk;
        for (int i = sent; i < sent + 50; ++i) {
            chunk += protocol::EncodeFrame(in::kRoomLine, "Busy Room:" + text(i));
        }
        alice->sendRaw(chunk);
        for (int i = sent; i < sent + 50 && echoed; ++i) {
            echoed = line(*alice) == "Busy Room:alice:" + text(i);
        }
    }
    bobReads.join();
    EXPECT_TRUE(echoed) << "alice heard her own lines, in order";
    ASSERT_EQ(bobHeard.size(), static_cast<std::size_t>(kLines));
    for (int i = 0; i < kLines; ++i) {
        ASSERT_EQ(bobHeard[i], "Busy Room:alice:" + text(i)) << "in order, none lost";
    }
    EXPECT_TRUE(sluggard->waitClosed(std::chrono::seconds(10)));
    EXPECT_NE(server_->log().find("outgoing queue full"), std::string::npos);
}

TEST_F(ChannelTest, JoiningAndLeavingInATightLoopCostsOthersOneListPerChange) {
    addMembers({"alice", "churner"});
    startServer({"--frame-rate", "100000", "--flood-limit", "100000"});
    auto alice = member("alice");
    join(*alice, "Busy Room", "Busy Room");
    EXPECT_EQ(list(*alice), "Busy Room:@alice;");
    auto churner = member("churner");
    std::string churn;
    for (int i = 0; i < 500; ++i) {
        churn += protocol::EncodeFrame(in::kJoinRoom, "Busy Room");
        churn += protocol::EncodeFrame(in::kLeaveRoom, "Busy Room");
    }
    churner->sendRaw(churn);
    for (int i = 0; i < 500; ++i) {
        ASSERT_EQ(churner->expect(out::kJoinedRoom).payload, "Busy Room");
        ASSERT_EQ(list(*churner), "Busy Room:@alice;churner;");
        ASSERT_EQ(list(*alice), "Busy Room:@alice;churner;");
        ASSERT_EQ(list(*alice), "Busy Room:@alice;");
    }
    say(*alice, "Busy Room", "still here");
    EXPECT_EQ(line(*alice), "Busy Room:alice:still here");
    expectNothingPending(*churner);
}

}  // namespace
}  // namespace tavren::test
