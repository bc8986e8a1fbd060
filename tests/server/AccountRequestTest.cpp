// What a logged-in member can change about the account.
#include "server/support/ServerFixture.h"

namespace tavren::test {
namespace {

using AccountRequestTest = ServerFixture;

TEST_F(AccountRequestTest, ChangePasswordChecksTheCurrentOneAndKeepsTheNewOne) {
    addAccount("alice", "secret1");
    startServer();
    {
        auto alice = logIn("alice", "secret1");
        alice->send(in::kChangePassword, "wrong1:better1");
        EXPECT_NE(alice->expect(kNotice).payload.find("current password is wrong"),
                  std::string::npos);
        alice->send(in::kChangePassword, "secret1:no;good");
        EXPECT_NE(alice->expect(kNotice).payload.find("not changed"), std::string::npos);
        alice->send(in::kChangePassword, "secret1:better1");
        alice->expect(out::kSuccessNotice);
    }
    auto client = connect();
    client->send(in::kVersionBeforeLogin, "1.0.0");
    client->expect(out::kHello);
    client->send(in::kCredentials, "alice:secret1");
    EXPECT_EQ(client->expect(kLoginResult).payload, "Nickname not registered!");
    client->send(in::kCredentials, "alice:better1");
    client->expect(out::kAccountRefresh);
}

TEST_F(AccountRequestTest, EmailAndNicknameFormatAreValidatedAndKept) {
    addAccount("alice", "secret1", {"--email", "old@example.org"});
    startServer();
    {
        auto alice = logIn("alice", "secret1");
        alice->send(in::kAskEmail, "");
        EXPECT_EQ(alice->expect(out::kAccountInfo).payload, "old@example.org");
        alice->send(in::kChangeEmail, "no address");
        alice->expect(kNotice);
        alice->send(in::kChangeEmail, "new@example.org");
        alice->expect(out::kSuccessNotice);
        alice->send(in::kNicknameFormat, std::string(201, 'x'));
        alice->expect(kNotice);
        // A new format comes straight back as an account refresh, which the client answers.
        alice->send(in::kNicknameFormat, "bold;255");
        EXPECT_EQ(alice->expect(out::kAccountRefresh).payload, "alice;0;bold;255");
        alice->send(in::kAccountRefreshOk, "OK");
    }
    // Both survive the session.
    auto alice = connect();
    alice->send(in::kVersionBeforeLogin, "1.0.0");
    alice->expect(out::kHello);
    alice->send(in::kCredentials, "alice:secret1");
    EXPECT_EQ(alice->expect(out::kAccountRefresh).payload, "alice;0;bold;255");
    alice->send(in::kAccountRefreshOk, "OK");
    alice->expect(out::kLoginAccepted);
    alice->send(in::kAskEmail, "");
    // Skip the rest of the login answers.
    std::optional<protocol::Frame> frame;
    while ((frame = alice->next()) && frame->code != out::kAccountInfo) {
    }
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->payload, "new@example.org");
}

}  // namespace
}  // namespace tavren::test
