// The client against the real tavrend: signing up, logging in, pings, account changes, and the
// server going away and coming back.
#include <gtest/gtest.h>

#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTreeWidget>

#include "ClientUnderTest.h"
#include "TavrendProcess.h"
#include "Wait.h"
#include "core/ui/ChatLogin.h"
#include "core/ui/ConnectionWindows.h"
#include "core/ui/SignUpDialog.h"

namespace tavren {
namespace {

using test::waitUntil;

// A real tavrend on an ephemeral port with its own database, pinging often.
class ServerIntegrationTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        ASSERT_TRUE(startServer()) << server.log().toStdString();
        client.pointAt(server.port());
    }

    bool startServer(quint16 port = 0) {
        return server.start({QStringLiteral("--ping-interval"), QStringLiteral("0.1")}, port);
    }

    bool loggedIn(int logins = 1) {
        return waitUntil(
            [&] { return client.loginsAccepted >= logins && client.session->online(); });
    }

    QTemporaryDir dir;
    test::TavrendProcess server{dir.filePath(QStringLiteral("tavrend.db"))};
    test::ClientUnderTest client;
};

TEST_F(ServerIntegrationTest, APersonSignsUpThroughTheWindowsAndIsLoggedInOnTheSameConnection) {
    ASSERT_TRUE(server.addAccount(QStringLiteral("Carol"), QStringLiteral("whatever")));
    QStringList onlineCounts;
    QStringList scores;
    QObject::connect(client.session.get(), &ServerSession::onlineCountChanged,
                     [&](const QString& text) { onlineCounts << text; });
    QObject::connect(client.session.get(), &ServerSession::scoreChanged,
                     [&](const QString& text) { scores << text; });
    QWidget owner;
    ConnectionWindows windows(*client.session, client.prompter, &owner);
    ChatLogin& login = windows.login();
    login.show();
    ASSERT_EQ(login.loginButton()->text(), QStringLiteral("&Sign Up Now!!"));

    client.prompter.answers = {Prompter::Answer::No};
    login.loginButton()->click();
    const auto dialogShown = [&] {
        return login.signUpDialog() != nullptr && login.signUpDialog()->isVisible();
    };
    ASSERT_TRUE(waitUntil(dialogShown));
    SignUpDialog* dialog = login.signUpDialog();
    const auto field = [dialog](const char* name) {
        return dialog->findChild<QLineEdit*>(QString::fromLatin1(name));
    };
    field("signUpName")->setText(QStringLiteral("Carol"));
    field("signUpPassword")->setText(QStringLiteral("tea-party"));
    field("signUpConfirmation")->setText(QStringLiteral("tea-parti"));
    field("signUpEmail")->setText(QStringLiteral("carol@example.org"));
    dialog->accept();
    EXPECT_TRUE(dialog->isVisible()) << "mismatched passwords are caught before sending";
    field("signUpConfirmation")->setText(QStringLiteral("tea-party"));
    dialog->accept();
    // The name is taken: the server says so, and the dialog comes back as it was typed.
    ASSERT_TRUE(waitUntil(dialogShown));
    EXPECT_EQ(field("signUpEmail")->text(), QStringLiteral("carol@example.org"));
    field("signUpName")->setText(QStringLiteral("Carol2"));
    dialog->accept();

    ASSERT_TRUE(loggedIn()) << client.errors().toStdString();
    EXPECT_EQ(client.messages(),
              (QStringList{QStringLiteral("Account Creation Error!\nThat name is taken."),
                           QStringLiteral("Registration Success!")}));
    EXPECT_EQ(client.settings->userString(), QStringLiteral("Carol2:tea-party"));
    EXPECT_EQ(client.settings->nickname(), QStringLiteral("Carol2"));
    EXPECT_EQ(client.session->login().onlineCaption(),
              QStringLiteral("Tavren Chat Online (Carol2)"));
    ASSERT_TRUE(waitUntil([&] { return !scores.isEmpty() && !onlineCounts.isEmpty(); }));
    EXPECT_EQ(onlineCounts.last(), QStringLiteral("Online: 1"));
    EXPECT_EQ(scores.last(), QStringLiteral("Tavren Score: 0"));
    ASSERT_TRUE(waitUntil([&] { return !login.isVisible(); })) << "the login window steps aside";
    EXPECT_EQ(login.accountList()->topLevelItem(1)->text(0), QStringLiteral("Carol2"));

    // Logging off brings the login window back, ready to log in again.
    windows.loginOrLogOff();
    EXPECT_TRUE(login.isVisible());
    EXPECT_EQ(login.loginButton()->text(), QStringLiteral("&Login"));
    login.loginButton()->click();
    ASSERT_TRUE(loggedIn(2)) << client.errors().toStdString();
}

TEST_F(ServerIntegrationTest, AMemberIsRefusedUntilTheRightPasswordThenStaysAndChangesIt) {
    ASSERT_TRUE(server.addAccount(QStringLiteral("Alice"), QStringLiteral("wonderland")));
    LoginFlow& login = client.session->login();
    for (const auto& [name, password] :
         {std::pair{QStringLiteral("alice"), QStringLiteral("looking-glass")},
          std::pair{QStringLiteral("nobody"), QStringLiteral("wonderland")}}) {
        client.prompter.asked.clear();
        client.selectAccount(name, password);
        login.clickLoginButton();
        ASSERT_TRUE(waitUntil([&] { return !client.messages().isEmpty(); })) << name.toStdString();
        EXPECT_EQ(client.messages(), QStringList{QStringLiteral("Nickname not registered!")});
        EXPECT_EQ(login.button().caption, QStringLiteral("&Sign Up Now!!"));
        test::runEventsFor(400);
        EXPECT_FALSE(client.session->online());
        EXPECT_EQ(client.session->link().socketState(), QAbstractSocket::UnconnectedState)
            << "a refused login is not retried";
    }
    client.prompter.asked.clear();
    client.selectAccount(QStringLiteral("alice"), QStringLiteral("wonderland"));
    login.clickLoginButton();
    ASSERT_TRUE(loggedIn()) << client.errors().toStdString();
    EXPECT_EQ(login.onlineCaption(), QStringLiteral("Tavren Chat Online (Alice)"));
    EXPECT_EQ(login.statusText(), QStringLiteral("Connected!"));
    // The refused tries are still in the list, the good one first.
    EXPECT_TRUE(client.settings->userString().startsWith(QStringLiteral("alice:wonderland;")));

    // Many watchdog intervals pass; the server's pings keep the link alive.
    const int wentOffline = client.wentOffline;
    test::runEventsFor(8 * test::ClientUnderTest::fastOptions().watchdogIntervalMs);
    EXPECT_TRUE(client.session->online());
    EXPECT_EQ(client.wentOffline, wentOffline);

    AccountRequests& requests = client.session->accountRequests();
    ASSERT_TRUE(
        requests.changePassword(QStringLiteral("wonderland"), QStringLiteral("rabbit-hole")));
    ASSERT_TRUE(waitUntil([&] { return !client.messages().isEmpty(); }));
    EXPECT_EQ(client.messages(), QStringList{QStringLiteral("Your password has been changed.")});
    EXPECT_TRUE(client.settings->userString().startsWith(QStringLiteral("alice:rabbit-hole;")));
    QString email;
    QObject::connect(&requests, &AccountRequests::emailReceived,
                     [&](const QString& e) { email = e; });
    ASSERT_TRUE(requests.changeEmail(QStringLiteral("alice@example.org")));
    ASSERT_TRUE(requests.askEmail());
    ASSERT_TRUE(waitUntil([&] { return !email.isEmpty(); }));
    EXPECT_EQ(email, QStringLiteral("alice@example.org"));
    // The changed password works for the next login.
    login.logOff();
    EXPECT_FALSE(client.session->online());
    login.clickLoginButton();
    ASSERT_TRUE(loggedIn(2)) << client.errors().toStdString();
}

TEST_F(ServerIntegrationTest, AnAbsentServerIsAMessageBoxButALostOneIsRetriedQuietly) {
    const quint16 port = server.port();
    server.stop();
    client.selectAccount(QStringLiteral("Alice"), QStringLiteral("wonderland"));
    client.session->login().clickLoginButton();
    ASSERT_TRUE(waitUntil([&] { return !client.messages().isEmpty(); }));
    const QString offline = QStringLiteral("Server is Offline. Please try again later..");
    EXPECT_EQ(client.messages(), QStringList{offline});
    EXPECT_EQ(client.session->login().button().caption, QStringLiteral("&Login"));
    EXPECT_EQ(client.session->login().statusText(), QStringLiteral("Error! ") + offline);
    test::runEventsFor(600);
    EXPECT_EQ(client.messages().size(), 1) << "no countdown before a first successful login";

    ASSERT_TRUE(server.addAccount(QStringLiteral("Alice"), QStringLiteral("wonderland")));
    ASSERT_TRUE(startServer(port));
    client.prompter.asked.clear();
    client.session->login().clickLoginButton();
    ASSERT_TRUE(loggedIn()) << client.errors().toStdString();
    ConnectedClock& clock = client.session->connection().clock();
    clock.tick();
    int errorWindowRaised = 0;
    QObject::connect(&client.session->errorLog(), &ErrorLog::shown, [&] { ++errorWindowRaised; });
    server.stop();
    ASSERT_TRUE(waitUntil([&] { return !client.session->online(); }));
    EXPECT_EQ(client.wentOffline, 1);
    EXPECT_EQ(clock.text(), QStringLiteral("00:00:00:00")) << "no stale time while offline";
    EXPECT_TRUE(client.errors().contains(QStringLiteral(
        "Server: You have been disconnected from the server, Auto Relogin Enabled..")));
    EXPECT_TRUE(client.session->console().lines().last().contains(QStringLiteral("disconnected")));
    // While the server is away the countdown keeps trying, without a message box, and the
    // login window says so.
    const auto triedBefore = client.errors().count(offline);
    ASSERT_TRUE(waitUntil([&] { return client.errors().count(offline) > triedBefore; }));
    EXPECT_TRUE(client.messages().isEmpty());
    ASSERT_TRUE(waitUntil([&] {
        return client.session->login().statusText() ==
               QStringLiteral("Auto Reconnect: waiting to try again (") + offline + ')';
    })) << client.session->login().statusText().toStdString();
    ASSERT_TRUE(startServer(port));
    ASSERT_TRUE(loggedIn(2)) << client.errors().toStdString();
    // The trouble mended itself: its lines are in the error window, which never jumped up,
    // and the last of them says the client is back.
    EXPECT_EQ(errorWindowRaised, 0);
    EXPECT_TRUE(client.errors().trimmed().endsWith(
        QStringLiteral("Server: Reconnected, you are back online.")))
        << client.errors().toStdString();
    EXPECT_TRUE(client.session->console().lines().last().contains(QStringLiteral("Reconnected")));
}

}  // namespace
}  // namespace tavren
