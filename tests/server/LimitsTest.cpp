// How hard and how long a client may push: pings, every limit hit once, and hostile input from one
// client never disturbing another.
#include <algorithm>
#include <iterator>
#include <regex>
#include <thread>
#include <vector>

#include "core/protocol/Codecs.h"
#include "server/support/ServerFixture.h"

namespace tavren::test {
namespace {

using namespace std::chrono_literals;

class LimitsTest : public ServerFixture {
  protected:
    // Alice logged in as the bystander whose service must not suffer.
    std::unique_ptr<RawClient> startWithAlice(std::vector<std::string> arguments) {
        addAccount("alice", "secret1");
        startServer(std::move(arguments));
        return logIn("alice", "secret1");
    }

    // Whether a newcomer gets the hello; the server notices that a connection closed a moment
    // after the fact, so it may take a few tries.
    bool admittedSoon() {
        for (int attempt = 0; attempt < 50; ++attempt) {
            auto client = connect();
            client->send(in::kVersionBeforeLogin, "1.0.0");
            if (auto answer = client->next(2s); answer && answer->code == out::kHello) {
                return true;
            }
            std::this_thread::sleep_for(50ms);
        }
        return false;
    }
};

// A frame header announcing `length` payload bytes, with nothing after it.
std::string headerAnnouncing(std::uint32_t length, protocol::CodePair code) {
    return std::string("*\x14") + protocol::EncodeLength32(length) +
           protocol::EncodeWord16(code.cmd1) + protocol::EncodeWord16(code.cmd2);
}

std::string askEmailTimes(int count) {
    std::string frames;
    for (int i = 0; i < count; ++i) {
        frames += protocol::EncodeFrame(in::kAskEmail, "");
    }
    return frames;
}

void expectStillServed(RawClient& client) {
    client.send(in::kAskEmail, "");
    client.expect(out::kAccountInfo);
}

TEST_F(LimitsTest, AnsweredPingsKeepTheLinkAndSilenceEndsIt) {
    addAccount("bob", "secret2");
    auto alice = startWithAlice({"--ping-interval", "0.1", "--ping-misses", "5"});
    auto bob = logIn("bob", "secret2");
    alice->expect(out::kOnlineCount);  // bob arrived
    bob->setAnswerPings(false);
    // Pings start before login, so a client filling in its sign-up dialog is kept too.
    auto newcomer = connect();
    newcomer->send(in::kVersionBeforeSignUp, "1.0.0");

    // Until alice hears the count fall (bob never answers, so he is dropped) and both have seen
    // five pings; on a busy machine that takes longer, so only a generous cap ends the wait.
    const protocol::Frame countFell{out::kOnlineCount, "1"};
    bool fell = false;
    for (const auto cap = std::chrono::steady_clock::now() + 20s;
         (!fell || alice->pingsSeen() < 5 || newcomer->pingsSeen() < 5) &&
         std::chrono::steady_clock::now() < cap;) {
        if (auto frame = alice->next(50ms)) {
            fell = fell || *frame == countFell;
        }
        EXPECT_FALSE(newcomer->next(50ms)) << "only pings before the sign-up";
    }
    EXPECT_TRUE(fell);
    EXPECT_GE(alice->pingsSeen(), 5);
    EXPECT_GE(newcomer->pingsSeen(), 5);
    expectStillServed(*alice);
    newcomer->send(in::kRegisterAccount, "carol:secret3:c@example.org");
    EXPECT_EQ(newcomer->expect(kSignUpResult).payload, "Registration Success!");
    EXPECT_TRUE(bob->waitClosed());
    EXPECT_GE(bob->pingsSeen(), 5);
}

TEST_F(LimitsTest, HostileFramesCloseOnlyTheirOwnConnection) {
    auto alice = startWithAlice({"--max-payload", "1000"});
    for (const std::string& bytes : {
             std::string("GET / HTTP/1.0\r\n\r\n"),            // not our protocol at all
             std::string("*\x15") + std::string(8, '\0'),      // wrong tag byte
             headerAnnouncing(1001, in::kCredentials),         // payload over the limit
             headerAnnouncing(0xFFFFFFF0u, in::kCredentials),  // a length meant to overflow
             headerAnnouncing(0, {-1, 1}),                     // cmd1 above 32767 on the wire
         }) {
        auto attacker = connect();
        attacker->sendRaw(bytes);
        EXPECT_TRUE(attacker->waitClosed()) << "not closed after hostile bytes";
        expectStillServed(*alice);
    }
    // A payload of exactly the limit is accepted (and refused as an e-mail address).
    alice->send(in::kChangeEmail, std::string(1000, 'x'));
    alice->expect(kNotice);
    // A frame cut off mid-way leaves the server waiting, not crashed.
    auto halfway = connect();
    halfway->sendRaw(headerAnnouncing(50, in::kCredentials) + "only part");
    expectStillServed(*alice);
}

TEST_F(LimitsTest, ConnectionsPerAddressAreCappedAndLoginMustFinishInTime) {
    auto alice = startWithAlice({"--max-per-address", "2", "--login-timeout", "1"});
    auto idle = greet();
    {
        auto third = connect();
        EXPECT_NE(third->expect(kNotice).payload.find("Too many connections"), std::string::npos);
        EXPECT_TRUE(third->waitClosed());
    }
    EXPECT_NE(idle->expect(kNotice, 3s).payload.find("did not log in in time"), std::string::npos);
    EXPECT_TRUE(idle->waitClosed());
    expectStillServed(*alice);  // the deadline is for logging in only
    // A place is given back however the connection ends: closed by the server, then by the client.
    EXPECT_TRUE(admittedSoon());
    EXPECT_TRUE(admittedSoon());
}

TEST_F(LimitsTest, FastClientsAreSlowedAndFloodersDropped) {
    addAccount("bob", "secret2");
    auto alice = startWithAlice({"--frame-rate", "20", "--flood-limit", "15"});
    // A burst above the rate is delayed, not lost.
    alice->sendRaw(askEmailTimes(25));
    for (int i = 0; i < 25; ++i) {
        alice->expect(out::kAccountInfo);
    }
    // A client that keeps sending past the rate is told and dropped; others are untouched.
    auto bob = logIn("bob", "secret2");
    alice->expect(out::kOnlineCount);
    bob->sendRaw(askEmailTimes(300));
    std::optional<protocol::Frame> frame;
    while ((frame = bob->next()) && frame->code == out::kAccountInfo) {
    }
    ASSERT_TRUE(frame) << "no notice before the drop";
    EXPECT_EQ(frame->code, kNotice);
    EXPECT_NE(frame->payload.find("too fast"), std::string::npos);
    EXPECT_TRUE(bob->waitClosed());
    EXPECT_EQ(alice->expect(out::kOnlineCount).payload, "1");
    expectStillServed(*alice);
}

TEST_F(LimitsTest, AClientThatDoesNotReadIsDropped) {
    addAccount("bob", "secret2");
    auto alice = startWithAlice({"--queue-limit", "8", "--send-buffer", "4096", "--frame-rate",
                                 "100000", "--flood-limit", "100000", "--ping-interval", "30"});
    auto sluggard = greet("1.0.0", 2048);
    sluggard->send(in::kCredentials, "bob:secret2");
    sluggard->expect(out::kAccountRefresh);
    sluggard->send(in::kAccountRefreshOk, "OK");
    // Far more answers than the kernel buffers and the queue can hold, and none read.
    sluggard->sendRaw(askEmailTimes(20000));
    EXPECT_TRUE(sluggard->waitClosed(10s));
    EXPECT_EQ(alice->expect(out::kOnlineCount).payload, "2");
    EXPECT_EQ(alice->expect(out::kOnlineCount).payload, "1");
    expectStillServed(*alice);
    EXPECT_NE(server_->log().find("outgoing queue full"), std::string::npos);
}

TEST_F(LimitsTest, PasswordChecksForClientsThatHungUpAreSkipped) {
    addAccount("alice", "secret1");
    startServer({"--max-per-address", "100"});
    // Each check costs real time; twenty clients that send a password and leave at once must not
    // make the next member wait for twenty checks nobody reads.
    for (int i = 0; i < 20; ++i) {
        auto client = connect();
        client->send(in::kVersionBeforeLogin, "1.0.0");
        client->send(in::kCredentials, "alice:wrong" + std::to_string(i));
    }
    logIn("alice", "secret1");
    const std::string log = server_->log();
    const std::regex refused("wrong password");
    const auto checked = std::distance(std::sregex_iterator(log.begin(), log.end(), refused), {});
    EXPECT_LT(checked, 10);
}

}  // namespace
}  // namespace tavren::test
