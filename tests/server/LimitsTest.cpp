// Every limit hit once, and hostile input from one client never disturbs another.
#include <thread>

#include "core/protocol/Codecs.h"
#include "server/support/ServerFixture.h"

namespace tavren::test {
namespace {

using LimitsTest = ServerFixture;
using namespace std::chrono_literals;

// A frame header announcing `length` payload bytes, with nothing after it.
std::string headerAnnouncing(std::uint32_t length, protocol::CodePair code) {
    return std::string("*\x14") + protocol::EncodeLength32(length) +
           protocol::EncodeWord16(code.cmd1) + protocol::EncodeWord16(code.cmd2);
}

// The bystander is still served: it asks for its e-mail address and gets the answer.
void expectStillServed(RawClient& client) {
    client.send(in::kAskEmail, "");
    client.expect(out::kAccountInfo);
}

TEST_F(LimitsTest, HostileFramesCloseOnlyTheirOwnConnection) {
    addAccount("alice", "secret1");
    startServer({"--max-payload", "1000"});
    auto alice = logIn("alice", "secret1");

    const std::string hostile[] = {
        "GET / HTTP/1.0\r\n\r\n",                         // not our protocol at all
        std::string("*\x15") + std::string(8, '\0'),      // wrong tag byte
        headerAnnouncing(1001, in::kCredentials),         // payload over the limit
        headerAnnouncing(0xFFFFFFF0u, in::kCredentials),  // a length meant to overflow
        headerAnnouncing(0, {-1, 1}),                     // cmd1 above 32767 on the wire
    };
    for (const std::string& bytes : hostile) {
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

TEST_F(LimitsTest, LoginMustFinishInTime) {
    addAccount("alice", "secret1");
    startServer({"--login-timeout", "1"});
    auto alice = logIn("alice", "secret1");
    auto idle = connect();
    idle->send(in::kVersionBeforeLogin, "1.0.0");
    idle->expect(out::kHello);
    EXPECT_NE(idle->expect(kNotice, 3s).payload.find("did not log in in time"), std::string::npos);
    EXPECT_TRUE(idle->waitClosed());
    // The deadline is for logging in only.
    expectStillServed(*alice);
}

TEST_F(LimitsTest, ConnectionsPerAddressAreCapped) {
    startServer({"--max-per-address", "2"});
    auto first = connect();
    auto second = connect();
    {
        auto third = connect();
        EXPECT_NE(third->expect(kNotice).payload.find("Too many connections"), std::string::npos);
        EXPECT_TRUE(third->waitClosed());
    }
    // The two admitted ones work.
    second->send(in::kVersionBeforeLogin, "1.0.0");
    second->expect(out::kHello);
    // Closing one makes room again (the server notices the close a moment later).
    first.reset();
    bool admitted = false;
    for (int attempt = 0; attempt < 50 && !admitted; ++attempt) {
        auto another = connect();
        another->send(in::kVersionBeforeLogin, "1.0.0");
        auto answer = another->next(2s);
        admitted = answer && answer->code == out::kHello;
        if (!admitted) {
            std::this_thread::sleep_for(50ms);
        }
    }
    EXPECT_TRUE(admitted);
}

TEST_F(LimitsTest, FastClientsAreSlowedAndFloodersDropped) {
    addAccount("alice", "secret1");
    addAccount("bob", "secret2");
    startServer({"--frame-rate", "20", "--flood-limit", "15"});
    auto alice = logIn("alice", "secret1");

    // A burst above the rate is delayed, not lost.
    std::string burst;
    for (int i = 0; i < 25; ++i) {
        burst += protocol::EncodeFrame(in::kAskEmail, "");
    }
    alice->sendRaw(burst);
    for (int i = 0; i < 25; ++i) {
        alice->expect(out::kAccountInfo);
    }

    // A client that keeps sending past the rate is told and dropped; others are untouched.
    auto bob = logIn("bob", "secret2");
    alice->expect(out::kOnlineCount);
    std::string flood;
    for (int i = 0; i < 300; ++i) {
        flood += protocol::EncodeFrame(in::kAskEmail, "");
    }
    bob->sendRaw(flood);
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
    addAccount("alice", "secret1");
    addAccount("bob", "secret2");
    startServer({"--queue-limit", "8", "--send-buffer", "4096", "--frame-rate", "100000",
                 "--flood-limit", "100000", "--ping-interval", "30"});
    auto alice = logIn("alice", "secret1");
    auto sluggard = connect(2048);
    sluggard->send(in::kVersionBeforeLogin, "1.0.0");
    sluggard->expect(out::kHello);
    sluggard->send(in::kCredentials, "bob:secret2");
    sluggard->expect(out::kAccountRefresh);
    sluggard->send(in::kAccountRefreshOk, "OK");
    // Asks for far more answers than the kernel buffers and the queue can hold, reading none.
    std::string requests;
    for (int i = 0; i < 20000; ++i) {
        requests += protocol::EncodeFrame(in::kAskEmail, "");
    }
    sluggard->sendRaw(requests);
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
    std::size_t checked = 0;
    for (auto at = log.find("wrong password"); at != std::string::npos;
         at = log.find("wrong password", at + 1)) {
        ++checked;
    }
    EXPECT_LT(checked, 10u);
}

}  // namespace
}  // namespace tavren::test
