// The handshakes a client goes through: sign-up, login, and every way either is refused.
#include "server/support/ServerFixture.h"

namespace tavren::test {
namespace {

using LoginTest = ServerFixture;

TEST_F(LoginTest, SignUpRefusesBadFieldsThenCreatesOneAccountToLogInWith) {
    addAccount("Taken", "secret1");
    startServer({"--max-login-attempts", "100"});
    {
        auto client = connect();
        // Nothing comes back to the version: the client is filling in its sign-up dialog.
        client->send(in::kVersionBeforeSignUp, "1.0.0");
        const std::string kError = "Account Creation Error!:";
        // Each field is checked (the rules' edges are tested on their own), and so is the name's
        // owner in any spelling.
        for (const char* payload : {
                 "TAKEN:secret1:t@example.org",
                 "a;b:secret1:x@example.org",
                 "Fine::x@example.org",
                 "Fine:secret1:not-an-address",
                 "Fine",
                 "*new_user*:secret1:x@example.org",
             }) {
            client->send(in::kRegisterAccount, payload);
            const auto answer = client->expect(kSignUpResult).payload;
            EXPECT_EQ(answer.rfind(kError, 0), 0u) << payload << " -> " << answer;
            EXPECT_GT(answer.size(), kError.size()) << "a refusal says why";
        }
        client->send(in::kRegisterAccount, "NewUser:secret1:new@example.org");
        EXPECT_EQ(client->expect(kSignUpResult).payload, "Registration Success!");
        client->send(in::kRegisterAccount, "Other:secret1:o@example.org");
        EXPECT_EQ(client->expect(kSignUpResult).payload,
                  "Account Creation Error!:One new account per connection.");
    }

    // Names are matched without regard to case; the answers spell it as signed up.
    auto client = greet();
    client->send(in::kCredentials, "newuser:secret1");
    EXPECT_EQ(client->expect(out::kAccountRefresh).payload, "NewUser;0;");
    client->send(in::kAccountRefreshOk, "OK");
    EXPECT_EQ(client->expect(out::kLoginAccepted).payload, "NewUser");
    EXPECT_EQ(client->expect(out::kSessionSettings).payload, "NewUser;General");
    EXPECT_EQ(client->expect(out::kOnlineCount).payload, "1");
    EXPECT_EQ(client->expect(out::kScore).payload, "0");
    EXPECT_EQ(client->expect(out::kFloodMeters).payload, "10;1000");
    EXPECT_EQ(client->expect(out::kBuddyPresence).payload, ":") << "an empty buddy list";
    client->send(in::kMailReceive, "Mail-Recv");
    EXPECT_EQ(client->expect(out::kMailList).payload, "");
    client->send(in::kAskEmail, "");
    EXPECT_EQ(client->expect(out::kAccountInfo).payload, "new@example.org");
}

TEST_F(LoginTest, BadLoginsGetOneRefusalAndTooManyCloseTheConnection) {
    addAccount("alice", "secret1");
    startServer({"--max-login-attempts", "11"});
    auto client = connect();
    // Out of turn, so ignored: credentials before the version, "OK" before any account data.
    client->send(in::kCredentials, "alice:secret1");
    client->send(in::kAccountRefreshOk, "OK");
    client->send(in::kVersionBeforeLogin, "1.0.0");
    client->expect(out::kHello);
    client->send(in::kAskEmail, "");  // account requests wait for the login
    // Wrong password and unknown name read the same, so nobody can probe which names exist.
    for (const char* payload :
         {"alice:wrong1", "nobody:secret1", "alice:", ":secret1", "", "alice;x:secret1", "alice",
          "alice:secret1x", "alice:secret", "aliceeeeeeeeeeeeeeeeeeeeeeeeeeeeeee:secret1"}) {
        client->send(in::kCredentials, payload);
        EXPECT_EQ(client->expect(kLoginResult).payload, "Nickname not registered!") << payload;
    }
    // Ten refusals do not spoil the connection for the right password; only "OK" goes on.
    client->send(in::kCredentials, "alice:secret1");
    client->expect(out::kAccountRefresh);
    client->send(in::kAccountRefreshOk, "Not OK");
    client->send(in::kAccountRefreshOk, "OK");
    client->expect(out::kLoginAccepted);

    // The eleventh is answered, then the connection is closed.
    auto guesser = greet();
    for (int i = 0; i < 11; ++i) {
        guesser->send(in::kCredentials, "nobody:guess" + std::to_string(i));
        guesser->expect(kLoginResult);
    }
    EXPECT_TRUE(guesser->waitClosed());
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
    greet("1.2.0");  // the latest gets the ordinary hello
}

TEST_F(LoginTest, OnlineCountFollowsLoginsASecondLoginReplacesTheFirstAndStopEndsAll) {
    addAccount("alice", "secret1");
    addAccount("bob", "secret2");
    startServer({"--motd", "Welcome to the test server!"});
    auto alice = logIn("alice", "secret1");
    EXPECT_EQ(alice->expect(kMessageOfTheDay).payload, "Welcome to the test server!");
    {
        auto bob = logIn("bob", "secret2");
        EXPECT_EQ(alice->expect(out::kOnlineCount).payload, "2");
    }
    EXPECT_EQ(alice->expect(out::kOnlineCount).payload, "1") << "bob's connection is gone";

    // Alice logs in again from elsewhere: the old session is told and closed.
    auto again = logIn("ALICE", "secret1");
    EXPECT_NE(alice->expect(kNotice).payload.find("logged in from another place"),
              std::string::npos);
    EXPECT_TRUE(alice->waitClosed());
    again->send(in::kAskEmail, "");
    again->expect(kMessageOfTheDay);  // the message of the day, then the answer
    again->expect(out::kAccountInfo);

    // A signal ends every link, logged in or not, and the server exits 0.
    auto anonymous = connect();
    EXPECT_EQ(server_->stop(), 0);
    server_.reset();
    EXPECT_TRUE(again->waitClosed());
    EXPECT_TRUE(anonymous->waitClosed());
}

}  // namespace
}  // namespace tavren::test
