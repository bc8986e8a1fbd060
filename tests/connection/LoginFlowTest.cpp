#include <gtest/gtest.h>

#include "ClientUnderTest.h"
#include "FakePeer.h"
#include "Wait.h"
#include "core/protocol/Catalogue.h"

namespace tavren {
namespace {

using test::waitUntil;
namespace in = protocol::server_to_client;
namespace out = protocol::client_to_server;
using Answer = Prompter::Answer;

TEST(LoginFlowTest, TheButtonFollowsTheSelectedRow) {
    test::ClientUnderTest client;
    LoginFlow& login = client.session->login();
    EXPECT_EQ(login.selectedRow(), 0) << "a fresh install has only *new_user*";
    EXPECT_EQ(login.button().caption, QStringLiteral("&Sign Up Now!!"));
    EXPECT_EQ(login.button().hint, QStringLiteral("Press to sign up!"));

    client.selectAccount(QStringLiteral("alice"), QStringLiteral("secret"));
    EXPECT_EQ(login.button().caption, QStringLiteral("&Login"));
    EXPECT_EQ(login.button().hint, QStringLiteral("Press to login to the Tavren Chat Service!"));
    login.select(0);
    EXPECT_EQ(login.button().caption, QStringLiteral("&Sign Up Now!!"));
    login.select(1);
    EXPECT_EQ(LoginFlow::versionText(), QStringLiteral("Version: ") + LoginFlow::clientVersion());
    EXPECT_EQ(login.statusText(), QStringLiteral("Connection Closed"));
}

TEST(LoginFlowTest, TheMemberQuestionDecidesBetweenSigningUpAndAddingAnAccount) {
    test::FakePeer server;
    test::ClientUnderTest client;
    client.pointAt(server.port());
    LoginFlow& login = client.session->login();
    int addRequests = 0;
    int signUpRequests = 0;
    QObject::connect(&login, &LoginFlow::addAccountRequested, [&] { ++addRequests; });
    QObject::connect(&login, &LoginFlow::signUpRequested, [&] { ++signUpRequests; });

    client.prompter.answers = {Answer::Cancel};
    login.clickLoginButton();
    ASSERT_EQ(client.prompter.asked.size(), 1u);
    EXPECT_EQ(client.prompter.asked[0].kind, QStringLiteral("yesnocancel"));
    EXPECT_EQ(client.prompter.asked[0].title, QStringLiteral("Aready a Tavren Member?"));
    EXPECT_EQ(
        client.prompter.asked[0].text,
        QStringLiteral("Do you already have an account registered with Tavren Chat Service?"));
    test::runEventsFor(50);
    EXPECT_EQ(server.connections(), 0) << "Cancel leaves the socket alone";
    EXPECT_EQ(login.button().kind, LoginButton::Kind::SignUp);

    client.prompter.answers = {Answer::Yes};
    login.clickLoginButton();
    EXPECT_EQ(addRequests, 1);
    EXPECT_EQ(server.connections(), 0);
    EXPECT_EQ(login.button().kind, LoginButton::Kind::SignUp);

    client.prompter.answers = {Answer::No};
    login.clickLoginButton();
    EXPECT_EQ(login.button().caption, QStringLiteral("Cancel"));
    ASSERT_TRUE(waitUntil([&] { return server.received(out::kVersionBeforeSignUp); }));
    EXPECT_EQ(QString::fromStdString(server.frames().front().payload), LoginFlow::clientVersion());
    EXPECT_EQ(signUpRequests, 1);
    EXPECT_EQ(login.mode(), LoginFlow::Mode::New);

    // Giving up on the sign-up dialog closes the connection and offers sign-up again.
    login.cancelSignUp();
    EXPECT_EQ(client.session->link().socketState(), QAbstractSocket::UnconnectedState);
    EXPECT_EQ(login.button().kind, LoginButton::Kind::SignUp);
}

TEST(LoginFlowTest, CancelStopsConnectingAndNothingReconnects) {
    test::FakePeer server;  // accepts, then says nothing
    test::ClientUnderTest client;
    client.pointAt(server.port());
    client.selectAccount(QStringLiteral("alice"), QStringLiteral("secret"));
    LoginFlow& login = client.session->login();
    login.clickLoginButton();
    ASSERT_TRUE(waitUntil([&] { return server.received(out::kVersionBeforeLogin); }));
    EXPECT_EQ(login.statusText(), QStringLiteral("Connected!"));
    EXPECT_EQ(login.button().caption, QStringLiteral("Cancel"));

    login.clickLoginButton();
    EXPECT_EQ(login.button().caption, QStringLiteral("&Login"));
    EXPECT_FALSE(login.countdownRunning());
    test::runEventsFor(300);
    EXPECT_EQ(server.connections(), 1);
}

TEST(LoginFlowTest, AnUpdateNoticeAsksOnceForEachVersionAndTheLoginGoesOn) {
    test::FakePeer server;
    test::ClientUnderTest client;
    client.pointAt(server.port());
    client.selectAccount(QStringLiteral("alice"), QStringLiteral("secret"));
    QString downloadUrl;
    QObject::connect(&client.session->login(), &LoginFlow::updateDownloadRequested,
                     [&](const QString& url) { downloadUrl = url; });
    server.setResponder([](test::FakePeer& peer, const protocol::Frame& frame) {
        if (frame.code == out::kVersionBeforeLogin) {
            peer.send(in::kUpdateNotice, "2.0.0;https://example.org/tavren");
        }
    });

    // Yes: download; No: never again for this version.
    int connection = 0;
    for (const Answer answer : {Answer::Yes, Answer::No, Answer::Cancel}) {
        client.prompter.asked.clear();
        client.prompter.answers = {answer};
        client.session->login().logOff();
        client.session->login().clickLoginButton();
        ++connection;
        ASSERT_TRUE(waitUntil([&] {
            return server.connections() == connection && server.received(out::kCredentials);
        }));
        EXPECT_EQ(server.frames().back().payload, "alice:secret");
        const bool asked = !client.prompter.asked.empty();
        EXPECT_EQ(asked, answer != Answer::Cancel)
            << "after No the same version is not offered again";
        if (asked) {
            EXPECT_EQ(client.prompter.asked[0].title, QStringLiteral("Upgrade to 2.0.0 Now"));
        }
    }
    EXPECT_EQ(downloadUrl, QStringLiteral("https://example.org/tavren"));
    EXPECT_TRUE(client.settings->isNagSuppressed(QStringLiteral("2.0.0")));
}

TEST(LoginFlowTest, ARefusedLoginGoesBackToSignUpWithoutRetrying) {
    test::FakePeer server;
    test::ClientUnderTest client;
    client.pointAt(server.port());
    client.selectAccount(QStringLiteral("alice"), QStringLiteral("wrong"));
    server.setResponder([](test::FakePeer& peer, const protocol::Frame& frame) {
        if (frame.code == out::kVersionBeforeLogin) {
            peer.send(in::kHello, "fake");
        } else if (frame.code == out::kCredentials) {
            peer.send(protocol::CodePair{3, 1}, "Nickname not registered!");
        }
    });
    const QString before = client.settings->userString();
    client.session->login().clickLoginButton();
    ASSERT_TRUE(waitUntil([&] { return !client.messages().isEmpty(); }));

    EXPECT_EQ(client.messages(), QStringList{QStringLiteral("Nickname not registered!")});
    EXPECT_EQ(client.session->login().selectedRow(), 0);
    EXPECT_EQ(client.session->login().button().kind, LoginButton::Kind::SignUp);
    EXPECT_FALSE(client.session->login().online());
    EXPECT_EQ(client.settings->userString(), before) << "a refused login leaves the list alone";
    test::runEventsFor(500);
    EXPECT_EQ(server.connections(), 1) << "a refused login is not retried";
}

}  // namespace
}  // namespace tavren
