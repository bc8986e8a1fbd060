// Private messages and typing status against the real server: what the recipient gets, what the
// sender is told when a message cannot go, and the line meter they share with channels.
#include <vector>

#include "server/support/ServerFixture.h"

namespace tavren::test {
namespace {

class PrivateMessageTest : public ServerFixture {
  protected:
    static void write(RawClient& client, const std::string& to, const std::string& text) {
        client.send(in::kPrivateMessage, to + ":" + text);
    }
    static std::string message(RawClient& client) {
        return client.expect(out::kPrivateMessage).payload;
    }
    static std::string notice(RawClient& client) {
        return client.expect(out::kPrivateNotice).payload;
    }
    static void expectNothingPending(RawClient& client) {
        client.send(in::kAskEmail, "");
        client.expect(out::kAccountInfo);
    }
};

TEST_F(PrivateMessageTest, MessagesReachTheRecipientInTheSendersSpellingAndFormat) {
    addMembers({"alice", "Bob"});
    startServer();
    auto alice = member("alice");
    auto bob = member("bob");

    // Byte for byte, in order; the recipient in any case; nothing back to the sender.
    const std::vector<std::string> texts = {"hello", "two: colons: here", "caf\xe9 <b>bold</b>",
                                            "\x01 not a format", std::string(2048, 'x')};
    for (const std::string& text : texts) {
        write(*alice, "BOB", text);
    }
    for (const std::string& text : texts) {
        EXPECT_EQ(message(*bob), "alice:" + text);
    }
    expectNothingPending(*alice);

    // The answer carries the spelling of the account, not the one typed at login.
    auto bobAgain = member("BOB");
    EXPECT_TRUE(bob->waitClosed());
    write(*bobAgain, "alice", "it is me");
    EXPECT_EQ(message(*alice), "Bob:it is me");

    // The sender's nickname format travels after U+0001, as in channel lines.
    const std::string format = "255;16711680;True;False;False;3;Comic Sans MS";
    alice->send(in::kNicknameFormat, format);
    alice->expect(out::kAccountRefresh);
    alice->send(in::kAccountRefreshOk, "OK");
    write(*alice, "bob", "styled");
    EXPECT_EQ(message(*bobAgain), "alice\x01" + format + ":styled");

    // Writing to oneself comes back as an incoming message.
    write(*alice, "Alice", "note to self");
    EXPECT_EQ(message(*alice), "alice\x01" + format + ":note to self");
    expectNothingPending(*bobAgain);
}

TEST_F(PrivateMessageTest, MessagesThatCannotGoAreAnsweredInTheirConversation) {
    addMembers({"alice", "carol"});
    startServer({"--max-line", "100", "--flood-lines", "100"});
    auto alice = member("alice");

    write(*alice, "Carol", "are you there?");
    EXPECT_EQ(notice(*alice), "Carol:Carol is offline; your message was not delivered.");
    write(*alice, "nobody", "hello?");
    EXPECT_EQ(notice(*alice), "nobody:There is no member called nobody.");
    // Names no member can have, however hostile, are named back cut and without control bytes.
    const std::string longName(2000, 'n');
    write(*alice, longName, "hi");
    EXPECT_EQ(notice(*alice),
              std::string(40, 'n') + ":There is no member called " + std::string(40, 'n') + ".");
    write(*alice, "@\xB3root", "hi");
    EXPECT_EQ(notice(*alice), "@\xB3root:There is no member called @\xB3root.");
    write(*alice, "ca\x01rol", "hi");
    EXPECT_EQ(notice(*alice), "ca?rol:There is no member called ca?rol.");
    write(*alice, "", "to nobody at all");
    EXPECT_EQ(notice(*alice), ":There is no member called .");

    // Too long is refused, not cut; an empty message is nothing at all.
    auto carol = member("carol");
    write(*alice, "carol", std::string(101, 'y'));
    EXPECT_EQ(notice(*alice),
              "carol:Your message was not sent: a message holds at most 100 characters.");
    write(*alice, "carol", "");
    alice->send(in::kPrivateMessage, "carol");
    write(*alice, "carol", std::string(100, 'y'));
    EXPECT_EQ(message(*carol), "alice:" + std::string(100, 'y'));
    expectNothingPending(*alice);
    expectNothingPending(*carol);
}

TEST_F(PrivateMessageTest, MessagesAndChannelLinesShareOneMeterThatTypingNeverEmpties) {
    addMembers({"alice", "bob"});
    startServer({"--flood-lines", "3", "--flood-interval", "3600", "--frame-rate", "100000",
                 "--flood-limit", "100000"});
    auto alice = member("alice");
    auto bob = member("bob");
    alice->send(in::kJoinRoom, "General");
    alice->expect(out::kJoinedRoom);
    alice->expect(out::kMemberList);

    // A burst of typing status, every code both ways; none of it costs a line.
    std::string burst;
    for (int i = 0; i < 400; ++i) {
        burst += protocol::EncodeFrame(in::kTypingStatus, "bob:" + std::to_string(1 + i % 4));
    }
    alice->sendRaw(burst);
    for (int i = 0; i < 400; ++i) {
        ASSERT_EQ(bob->expect(out::kTypingStatus).payload, "alice:" + std::to_string(1 + i % 4));
    }
    bob->send(in::kTypingStatus, "ALICE:3");
    EXPECT_EQ(alice->expect(out::kTypingStatus).payload, "bob:3");

    // Three lines in hand: two messages and a channel line go, then neither kind does.
    write(*alice, "bob", "one");
    write(*alice, "bob", "two");
    alice->send(in::kRoomLine, "General:three");
    write(*alice, "bob", "four");
    alice->send(in::kRoomLine, "General:five");
    EXPECT_EQ(message(*bob), "alice:one");
    EXPECT_EQ(message(*bob), "alice:two");
    EXPECT_EQ(alice->expect(out::kChannelHostMessage).payload, "General:alice:three");
    EXPECT_EQ(notice(*alice),
              "bob:You are sending messages too fast. Wait a moment, then try again.");
    EXPECT_EQ(alice->expect(out::kChannelHostMessage).payload,
              "General:**ChanHost:You are sending lines too fast. Wait a moment, then try again.");
    // Typing status still goes through with the meter empty.
    alice->send(in::kTypingStatus, "bob:2");
    EXPECT_EQ(bob->expect(out::kTypingStatus).payload, "alice:2");
    expectNothingPending(*bob);
}

TEST_F(PrivateMessageTest, TypingStatusWithABadCodeOrNobodyToSeeItIsDropped) {
    addMembers({"alice", "bob", "carol"});
    startServer();
    auto alice = member("alice");
    auto bob = member("bob");
    for (const std::string& payload :
         {std::string("bob:0"), std::string("bob:5"), std::string("bob:12"), std::string("bob:"),
          std::string("bob"), std::string("bob:a"), std::string("bob: 1"), std::string("bob:1 "),
          std::string("bob:\x01"), std::string("carol:1"), std::string("nobody:1"),
          std::string(2000, 'n') + ":1", std::string(":1"), std::string("")}) {
        alice->send(in::kTypingStatus, payload);
    }
    alice->send(in::kTypingStatus, "Bob:4");
    EXPECT_EQ(bob->expect(out::kTypingStatus).payload, "alice:4") << "only the good one";
    expectNothingPending(*alice);
    expectNothingPending(*bob);
}

}  // namespace
}  // namespace tavren::test
