// The handshakes a client goes through: sign-up, login, and every way either is refused.
#include "server/support/ServerFixture.h"

namespace tavren::test {
namespace {

using LoginTest = ServerFixture;

TEST_F(LoginTest, SignUpThenLogInWithTheNewAccount) {
    startServer();
    {
        auto client = connect();
        client->send(in::kVersionBeforeSignUp, "1.0.0");
        // Nothing comes back to the version: the client is filling in its sign-up dialog.
        client->send(in::kRegisterAccount, "NewUser:secret1:new@example.org");
        EXPECT_EQ(client->expect(kSignUpResult).payload, "Registration Success!");
        client->send(in::kRegisterAccount, "Other:secret1:o@example.org");
        EXPECT_EQ(client->expect(kSignUpResult).payload,
                  "Account Creation Error!:One new account per connection.");
    }

    auto client = connect();
    client->send(in::kVersionBeforeLogin, "1.0.0");
    const std::string hello = client->expect(out::kHello).payload;
    EXPECT_EQ(hello.rfind("tavrend;", 0), 0u) << hello;
    // Names are matched without regard to case; the answers spell it as signed up.
    client->send(in::kCredentials, "newuser:secret1");
    EXPECT_EQ(client->expect(out::kAccountRefresh).payload, "NewUser;0;");
    client->send(in::kAccountRefreshOk, "OK");
    EXPECT_EQ(client->expect(out::kLoginAccepted).payload, "NewUser");
    EXPECT_EQ(client->expect(out::kSessionSettings).payload, "NewUser;General");
    EXPECT_EQ(client->expect(out::kOnlineCount).payload, "1");
    EXPECT_EQ(client->expect(out::kScore).payload, "0");
    client->send(in::kMailReceive, "Mail-Recv");
    EXPECT_EQ(client->expect(out::kMailList).payload, "");
    client->send(in::kAskEmail, "");
    EXPECT_EQ(client->expect(out::kAccountInfo).payload, "new@example.org");
}

TEST_F(LoginTest, SignUpRefusesBadOrTakenFields) {
    addAccount("Taken", "secret1");
    startServer({"--max-login-attempts", "100"});
    auto client = connect();
    client->send(in::kVersionBeforeSignUp, "1.0.0");
    const std::string kError = "Account Creation Error!:";
    const char* refused[] = {
        "TAKEN:secret1:t@example.org",  // taken in another spelling
        "a;b:secret1:x@example.org",    // separator in the name
        ":secret1:x@example.org",       // empty name
        "Fine:secret1:",                // empty e-mail
        "Fine::x@example.org",          // empty password
        "Fine",                         // fields missing
        "ThisNameIsFarTooLongToUse:secret1:x@example.org",
        "Fine:secret1:not-an-address",
        "@Staff:secret1:x@example.org",  // rank marks cannot be faked
        "*new_user*:secret1:x@example.org",
    };
    for (const char* payload : refused) {
        client->send(in::kRegisterAccount, payload);
        const auto answer = client->expect(kSignUpResult).payload;
        EXPECT_EQ(answer.rfind(kError, 0), 0u) << payload << " -> " << answer;
        EXPECT_GT(answer.size(), kError.size()) << "a refusal says why";
    }
    // After all that the connection still signs up a good account.
    client->send(in::kRegisterAccount, "Fine:secret1:x@example.org");
    EXPECT_EQ(client->expect(kSignUpResult).payload, "Registration Success!");
}

TEST_F(LoginTest, EveryBadLoginGetsTheSameRefusal) {
    addAccount("alice", "secret1");
    startServer({"--max-login-attempts", "100"});
    auto client = connect();
    client->send(in::kVersionBeforeLogin, "1.0.0");
    client->expect(out::kHello);
    const char* refused[] = {
        "alice:wrong1",
        "nobody:secret1",
        "alice:",
        ":secret1",
        "",
        "alice;x:secret1",
        "alice",
        "alice:secret1x",
        "alice:secret",
        "aliceeeeeeeeeeeeeeeeeeeeeeeeeeeeeee:secret1",
    };
    for (const char* payload : refused) {
        client->send(in::kCredentials, payload);
        EXPECT_EQ(client->expect(kLoginResult).payload, "Nickname not registered!") << payload;
    }
    // Refusals do not spoil the connection for the right password.
    client->send(in::kCredentials, "alice:secret1");
    client->expect(out::kAccountRefresh);
}

TEST_F(LoginTest, TooManyFailedLoginsCloseTheConnection) {
    addAccount("alice", "secret1");
    startServer({"--max-login-attempts", "2"});
    auto client = connect();
    client->send(in::kVersionBeforeLogin, "1.0.0");
    client->expect(out::kHello);
    client->send(in::kCredentials, "alice:wrong1");
    client->expect(kLoginResult);
    client->send(in::kCredentials, "alice:wrong2");
    client->expect(kLoginResult);
    EXPECT_TRUE(client->waitClosed());
}

TEST_F(LoginTest, FramesOutOfTurnAreIgnored) {
    addAccount("alice", "secret1");
    startServer();
    auto client = connect();
    // Credentials before the version, and "OK" before any account data, change nothing.
    client->send(in::kCredentials, "alice:secret1");
    client->send(in::kAccountRefreshOk, "OK");
    client->send(in::kVersionBeforeLogin, "1.0.0");
    client->expect(out::kHello);
    client->send(in::kAskEmail, "");  // account requests wait for the login
    client->send(in::kCredentials, "alice:secret1");
    client->expect(out::kAccountRefresh);
    client->send(in::kAccountRefreshOk, "Not OK");
    client->send(in::kAccountRefreshOk, "OK");
    client->expect(out::kLoginAccepted);
}

TEST_F(LoginTest, OldClientsAreRefusedOrOfferedTheUpdate) {
    addAccount("alice", "secret1");
    startServer({"--min-version", "1.0.0", "--latest-version", "1.2.0", "--update-url",
                 "https://example.org/tavren"});
    for (const char* version : {"0.9.9", "1.0", "garbage", ""}) {
        auto client = connect();
        client->send(in::kVersionBeforeLogin, version);
        const auto notice = client->expect(kNotice).payload;
        EXPECT_NE(notice.find("1.2.0"), std::string::npos) << notice;
        EXPECT_TRUE(client->waitClosed()) << version;
    }
    // Between the minimum and the latest: the update is offered, and login goes on.
    auto client = connect();
    client->send(in::kVersionBeforeLogin, "1.1.0");
    EXPECT_EQ(client->expect(out::kUpdateNotice).payload, "1.2.0;https://example.org/tavren");
    client->send(in::kCredentials, "alice:secret1");
    client->expect(out::kAccountRefresh);
    // The latest version gets the ordinary hello.
    auto current = connect();
    current->send(in::kVersionBeforeLogin, "1.2.0");
    current->expect(out::kHello);
}

TEST_F(LoginTest, OnlineCountFollowsLoginsAndASecondLoginReplacesTheFirst) {
    addAccount("alice", "secret1");
    addAccount("bob", "secret2", {"--staff", "3"});
    startServer({"--motd", "Welcome to the test server!"});
    auto alice = logIn("alice", "secret1");
    EXPECT_EQ(alice->expect(kNotice).payload, "Welcome to the test server!");

    {
        auto bob = connect();
        bob->send(in::kVersionBeforeLogin, "1.0.0");
        bob->expect(out::kHello);
        bob->send(in::kCredentials, "bob:secret2");
        EXPECT_EQ(bob->expect(out::kAccountRefresh).payload, "bob;3;");
        bob->send(in::kAccountRefreshOk, "OK");
        bob->expect(out::kLoginAccepted);
        bob->expect(out::kSessionSettings);
        EXPECT_EQ(bob->expect(out::kOnlineCount).payload, "2");
        EXPECT_EQ(alice->expect(out::kOnlineCount).payload, "2");
    }
    // Bob's connection is gone: alice hears the count drop.
    EXPECT_EQ(alice->expect(out::kOnlineCount).payload, "1");

    // Alice logs in again from elsewhere: the old session is told and closed, the count stays.
    auto again = logIn("ALICE", "secret1");
    EXPECT_NE(alice->expect(kNotice).payload.find("logged in from another place"),
              std::string::npos);
    EXPECT_TRUE(alice->waitClosed());
    again->send(in::kAskEmail, "");
    again->expect(kNotice);  // the message of the day, then the answer
    again->expect(out::kAccountInfo);
}

}  // namespace
}  // namespace tavren::test
