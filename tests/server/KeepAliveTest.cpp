// Pings: a client that answers stays, one that falls silent is dropped.
#include <algorithm>
#include <vector>

#include "server/support/ServerFixture.h"

namespace tavren::test {
namespace {

using KeepAliveTest = ServerFixture;
using namespace std::chrono_literals;

TEST_F(KeepAliveTest, AnsweredPingsKeepTheLinkAndSilenceEndsIt) {
    addAccount("alice", "secret1");
    addAccount("bob", "secret2");
    startServer({"--ping-interval", "0.1", "--ping-misses", "5"});
    auto alice = logIn("alice", "secret1");
    auto bob = logIn("bob", "secret2");
    alice->expect(out::kOnlineCount);  // bob arrived
    bob->setAnswerPings(false);

    // Alice answers every ping for a good many intervals and is still served.
    std::vector<protocol::Frame> heard;
    const auto until = std::chrono::steady_clock::now() + 1500ms;
    while (std::chrono::steady_clock::now() < until) {
        if (auto frame = alice->next(100ms)) {
            heard.push_back(*frame);
        }
    }
    EXPECT_GE(alice->pingsSeen(), 5);
    alice->send(in::kAskEmail, "");
    alice->expect(out::kAccountInfo);
    // Bob never answered: he was dropped, and alice heard the count fall.
    EXPECT_TRUE(bob->waitClosed());
    const protocol::Frame countFell{out::kOnlineCount, "1"};
    EXPECT_NE(std::find(heard.begin(), heard.end(), countFell), heard.end());
    EXPECT_GE(bob->pingsSeen(), 5);
}

TEST_F(KeepAliveTest, PingsStartBeforeLoginSoASignUpDialogStaysConnected) {
    startServer({"--ping-interval", "0.1", "--ping-misses", "4"});
    auto client = connect();
    client->send(in::kVersionBeforeSignUp, "1.0.0");
    EXPECT_FALSE(client->next(800ms));  // only pings, answered
    EXPECT_GE(client->pingsSeen(), 3);
    client->send(in::kRegisterAccount, "carol:secret3:c@example.org");
    EXPECT_EQ(client->expect(kSignUpResult).payload, "Registration Success!");
}

}  // namespace
}  // namespace tavren::test
