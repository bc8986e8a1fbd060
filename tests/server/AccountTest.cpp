// An account from both ends: the operator's command line and the member's own requests.
#include "server/support/ServerFixture.h"

namespace tavren::test {
namespace {

using AccountTest = ServerFixture;

TEST_F(AccountTest, AccountAddThenTheMembersOwnChangesAreCheckedAndKept) {
    const auto added =
        accountAdd({"Alice", "secret1", "--staff", "3", "--email", "old@example.org"});
    EXPECT_EQ(added.exitCode, 0) << added.output;
    const auto duplicate = accountAdd({"alice", "other1"});
    EXPECT_NE(duplicate.exitCode, 0);
    EXPECT_NE(duplicate.output.find("already taken"), std::string::npos) << duplicate.output;
    const auto badName = accountAdd({"a:b", "secret1"});
    EXPECT_NE(badName.exitCode, 0);
    EXPECT_NE(badName.output.find("A name has"), std::string::npos) << badName.output;
    EXPECT_NE(accountAdd({"Other", "secret1", "--staff", "9"}).exitCode, 0);

    startServer();
    {
        auto alice = logIn("alice", "secret1");  // the duplicate did not change the password
        alice->send(in::kChangePassword, "wrong1:better1");
        EXPECT_NE(alice->expect(kNotice).payload.find("current password is wrong"),
                  std::string::npos);
        alice->send(in::kChangePassword, "secret1:no;good");
        EXPECT_NE(alice->expect(kNotice).payload.find("not changed"), std::string::npos);
        alice->send(in::kChangePassword, "secret1:better1");
        alice->expect(out::kSuccessNotice);
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
        EXPECT_EQ(alice->expect(out::kAccountRefresh).payload, "Alice;3;bold;255");
        alice->send(in::kAccountRefreshOk, "OK");
    }
    // All of it survives the session: only the new password works, and it brings the rest.
    auto alice = greet();
    alice->send(in::kCredentials, "alice:secret1");
    EXPECT_EQ(alice->expect(kLoginResult).payload, "Nickname not registered!");
    alice->send(in::kCredentials, "alice:better1");
    EXPECT_EQ(alice->expect(out::kAccountRefresh).payload, "Alice;3;bold;255");
    alice->send(in::kAccountRefreshOk, "OK");
    alice->send(in::kAskEmail, "");
    std::optional<protocol::Frame> frame;  // past the rest of the login answers
    while ((frame = alice->next()) && frame->code != out::kAccountInfo) {
    }
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->payload, "new@example.org");
}

TEST_F(AccountTest, StatusLinesFromTheConsoleAreAnswered) {
    ASSERT_EQ(accountAdd({"Alice", "secret1"}).exitCode, 0);
    startServer();
    auto alice = logIn("Alice", "secret1");
    alice->send(in::kAwayStatus, "  /HELP ");
    std::optional<protocol::Frame> frame;  // past the rest of the login answers
    while ((frame = alice->next()) && frame->code != out::kListUpdate) {
    }
    ASSERT_TRUE(frame);
    EXPECT_NE(frame->payload.find("/away TEXT"), std::string::npos) << frame->payload;
    EXPECT_EQ(frame->payload.back(), '\x01');

    alice->send(in::kAwayStatus, "/away Out to lunch: back at 1;30");
    EXPECT_EQ(alice->expect(out::kAwayMenu).payload, "True;Out to lunch: back at 1;30");
    alice->send(in::kAwayStatus, "/back");
    EXPECT_EQ(alice->expect(out::kAwayMenu).payload, "False;");
    alice->send(in::kAwayStatus, "/frobnicate " + std::string(500, 'x'));
    const std::string unknown = alice->expect(kNotice).payload;
    EXPECT_NE(unknown.find("\"/frobnicate\""), std::string::npos) << unknown;
    alice->send(in::kAwayStatus, "/" + std::string(500, 'y'));
    EXPECT_LT(alice->expect(kNotice).payload.size(), 200u);
}

}  // namespace
}  // namespace tavren::test
