// The direct-connection handshake against the real server: relayed to the named peer only with the
// requester's address added, arguments the peer can always split, notices when a request cannot
// arrive, the bound on handshakes per minute, and certificate fingerprints that travel only with
// the request or accept they were sent for.
#include <memory>
#include <string>

#include "server/support/ServerFixture.h"

namespace tavren::test {
namespace {

class DirectConnectionTest : public ServerFixture {
  protected:
    static void handshake(RawClient& client, const std::string& payload) {
        client.send(in::kDirectConnection, payload);
    }
    static std::string relayed(RawClient& client) {
        return client.expect(out::kDirectConnection).payload;
    }
    static std::string notice(RawClient& client) {
        return client.expect(out::kPrivateNotice).payload;
    }
    static void expectNothingPending(RawClient& client) {
        client.send(in::kAskEmail, "");
        client.expect(out::kAccountInfo);
    }
    // A member logged in from another loopback address, as another host would be.
    std::unique_ptr<RawClient> memberFrom(const char* sourceAddress, const std::string& name) {
        auto client = std::make_unique<RawClient>(server_->port(), 0, sourceAddress);
        client->send(in::kVersionBeforeLogin, "1.0.0");
        client->expect(out::kHello);
        client->send(in::kCredentials, name + ":secret1");
        client->expect(out::kAccountRefresh);
        client->send(in::kAccountRefreshOk, "OK");
        client->expect(out::kLoginAccepted);
        client->ignore(out::kOnlineCount);
        client->ignore(kMessageOfTheDay);
        client->ignore(out::kSessionSettings);
        client->ignore(out::kScore);
        client->ignore(out::kFloodMeters);
        client->ignore(out::kBuddyPresence);
        return client;
    }
};

TEST_F(DirectConnectionTest, EachKindReachesTheNamedPeerOnlyWithTheRequestersAddress) {
    addMembers({"alice", "Bob", "carol"});
    startServer();
    auto alice = memberFrom("127.0.0.5", "alice");
    auto bob = member("bob");
    auto carol = member("carol");

    handshake(*alice, "BOB:1:2000");
    EXPECT_EQ(relayed(*bob), "alice:1:2000:127.0.0.5");
    handshake(*bob, "alice:5:0");
    EXPECT_EQ(relayed(*alice), "Bob:5:0:127.0.0.1");
    // Behind a firewall the requester offers port 0 and the accepter names the port it listens on.
    handshake(*alice, "bob:1:0");
    EXPECT_EQ(relayed(*bob), "alice:1:0:127.0.0.5");
    handshake(*bob, "alice:5:02100");
    EXPECT_EQ(relayed(*alice), "Bob:5:2100:127.0.0.1");
    // Cancel and abort carry nothing; an error's reason keeps the address the last field.
    handshake(*alice, "bob:2:whatever");
    EXPECT_EQ(relayed(*bob), "alice:2:0:127.0.0.5");
    handshake(*alice, "bob:4:");
    EXPECT_EQ(relayed(*bob), "alice:4:0:127.0.0.5");
    handshake(*bob, "alice:3:Connection refused: port 2000\x01\r\n");
    EXPECT_EQ(relayed(*alice), "Bob:3:Connection refused. port 2000???:127.0.0.1");
    handshake(*bob, "alice:3:" + std::string(300, 'r'));
    EXPECT_EQ(relayed(*alice), "Bob:3:" + std::string(200, 'r') + ":127.0.0.1");

    // Nothing that the peer could not read goes out.
    for (const std::string& bad :
         {std::string("bob:9:0"), std::string("bob:1:70000"), std::string("bob:1:-1"),
          std::string("bob:1: 2000"), std::string("bob:1:"), std::string("bob:12:0"),
          std::string("bob:5:x"), std::string("bob"), std::string("")}) {
        handshake(*alice, bad);
    }
    expectNothingPending(*bob);
    expectNothingPending(*carol);
    expectNothingPending(*alice);
}

TEST_F(DirectConnectionTest, ARequestThatCannotArriveIsAnsweredAndTheRestAreBounded) {
    addMembers({"alice", "bob", "carol"});
    startServer({"--max-handshakes", "7"});
    auto alice = member("alice");
    auto bob = member("bob");

    handshake(*alice, "Carol:1:2000");
    EXPECT_EQ(notice(*alice), "Carol:Carol is offline; the direct connection was not set up.");
    handshake(*alice, "carol:5:0");
    EXPECT_EQ(notice(*alice), "carol:carol is offline; the direct connection was not set up.");
    handshake(*alice, "nobody:1:2000");
    EXPECT_EQ(notice(*alice), "nobody:There is no member called nobody.");
    // A cancel to somebody gone says nothing: the conversation sending it may be closing.
    handshake(*alice, "carol:2:0");
    handshake(*alice, "nobody:3:gone");
    expectNothingPending(*alice);

    // Seven a minute, whatever became of them: the seventh still goes, the eighth is refused
    // with a notice.
    handshake(*alice, "bob:1:2000");
    EXPECT_EQ(relayed(*bob), "alice:1:2000:127.0.0.1");
    handshake(*alice, "bob:2:0");
    handshake(*alice, "bob:1:2001");
    EXPECT_EQ(relayed(*bob), "alice:2:0:127.0.0.1");
    EXPECT_EQ(notice(*alice),
              "bob:You are asking for direct connections too fast. Wait a moment, then try again.");
    expectNothingPending(*bob);
    // Another member's bound is its own.
    handshake(*bob, "alice:5:0");
    EXPECT_EQ(relayed(*alice), "bob:5:0:127.0.0.1");
}

// A fingerprint is held until the member's next handshake and goes right before it when that is a
// request or accept to the same member, within that handshake's share of the bound; alone, before
// anything else, or to somebody else it goes nowhere.
TEST_F(DirectConnectionTest, AFingerprintTravelsOnlyWithTheRequestOrAcceptItPrecedes) {
    addMembers({"alice", "bob", "carol"});
    startServer({"--max-handshakes", "3"});
    auto alice = memberFrom("127.0.0.5", "alice");
    auto bob = member("bob");
    auto carol = member("carol");
    const std::string first =
        "AB:CD:EF:01:23:45:67:89:AB:CD:EF:01:23:45:67:89:AB:CD:EF:01:23:45:67:89:AB:CD:EF:01:23:45:"
        "67:89";
    const std::string second =
        "01:23:45:67:89:AB:CD:EF:01:23:45:67:89:AB:CD:EF:01:23:45:67:89:AB:CD:EF:01:23:45:67:89:AB:"
        "CD:EF";

    handshake(*alice, "Bob:6:" + first);
    handshake(*alice, "bob:1:2000");
    EXPECT_EQ(relayed(*bob), "alice:6:" + first + ":127.0.0.5");
    EXPECT_EQ(relayed(*bob), "alice:1:2000:127.0.0.5");
    handshake(*bob, "alice:6:" + second);
    handshake(*bob, "alice:5:0");
    EXPECT_EQ(relayed(*alice), "bob:6:" + second + ":127.0.0.1");
    EXPECT_EQ(relayed(*alice), "bob:5:0:127.0.0.1");

    // Alone, or followed by another kind, or meant for somebody else: not relayed, and gone.
    handshake(*alice, "bob:6:" + first);
    expectNothingPending(*bob);
    handshake(*alice, "bob:2:0");
    EXPECT_EQ(relayed(*bob), "alice:2:0:127.0.0.5");
    handshake(*alice, "carol:6:" + first);
    handshake(*alice, "bob:1:2001");
    EXPECT_EQ(relayed(*bob), "alice:1:2001:127.0.0.5");
    // Not exactly a fingerprint: dropped like any bad argument.
    handshake(*alice, "bob:6:" + std::string(95, 'A'));
    handshake(*alice, "bob:6:ab:cd");
    expectNothingPending(*bob);
    expectNothingPending(*carol);

    // Fingerprints took nothing from the bound, but alice's three handshakes are spent: the
    // fingerprint before a refused request is not relayed either.
    handshake(*alice, "bob:6:" + first);
    handshake(*alice, "bob:1:2002");
    EXPECT_EQ(notice(*alice),
              "bob:You are asking for direct connections too fast. Wait a moment, then try again.");
    expectNothingPending(*bob);
}

}  // namespace
}  // namespace tavren::test
