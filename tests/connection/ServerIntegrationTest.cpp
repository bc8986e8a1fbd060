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
        ASSERT_TRUE(server.start({QStringLiteral("--ping-interval"), QStringLiteral("0.1")}))
            << server.log().toStdString();
        client.pointAt(server.port());
    }

    bool loggedIn(int logins = 1) {
        return waitUntil(
            [&] { return client.loginsAccepted >= logins && client.session->online(); });
    }

    QTemporaryDir dir;
    test::TavrendProcess server{dir.filePath(QStringLiteral("tavrend.db"))};
    test::ClientUnderTest client;
};

TEST_F(ServerIntegrationTest, ANewMemberSignsUpAndIsLoggedInOnTheSameConnection) {
    LoginFlow& login = client.session->login();
    QStringList onlineCounts;
    QStringList scores;
    QObject::connect(client.session.get(), &ServerSession::onlineCountChanged,
                     [&](const QString& text) { onlineCounts << text; });
    QObject::connect(client.session.get(), &ServerSession::scoreChanged,
                     [&](const QString& text) { scores << text; });
    int signUpDialogs = 0;
    QStringList names = {QStringLiteral("Newbie"), QStringLiteral("Newbie2")};
    QObject::connect(&login, &LoginFlow::signUpRequested, [&] {
        ++signUpDialogs;
        login.submitSignUp(names.value(signUpDialogs - 1), QStringLiteral("pass1234"),
                           QStringLiteral("newbie@example.org"));
    });

    // First try a name that is taken: the server refuses, the dialog comes back.
    ASSERT_TRUE(server.addAccount(QStringLiteral("Newbie"), QStringLiteral("whatever")));
    client.prompter.answers = {Prompter::Answer::No};
    login.clickLoginButton();
    ASSERT_TRUE(loggedIn()) << client.errors().toStdString();

    EXPECT_EQ(signUpDialogs, 2);
    EXPECT_EQ(client.messages(),
              (QStringList{QStringLiteral("Account Creation Error!\nThat name is taken."),
                           QStringLiteral("Registration Success!")}));
    EXPECT_EQ(client.settings->userString(), QStringLiteral("Newbie2:pass1234"));
    EXPECT_EQ(login.selectedRow(), 1);
    EXPECT_EQ(client.settings->nickname(), QStringLiteral("Newbie2"));
    EXPECT_EQ(login.onlineCaption(), QStringLiteral("Tavren Chat Online (Newbie2)"));
    ASSERT_TRUE(waitUntil([&] { return !scores.isEmpty() && !onlineCounts.isEmpty(); }));
    EXPECT_EQ(onlineCounts.last(), QStringLiteral("Online: 1"));
    EXPECT_EQ(scores.last(), QStringLiteral("Tavren Score: 0"));
}

TEST_F(ServerIntegrationTest, APersonSignsUpAndLogsInThroughTheWindows) {
    QWidget owner;
    ConnectionWindows windows(*client.session, client.prompter, &owner);
    ChatLogin& login = windows.login();
    login.show();
    ASSERT_EQ(login.loginButton()->text(), QStringLiteral("&Sign Up Now!!"));

    client.prompter.answers = {Prompter::Answer::No};
    login.loginButton()->click();
    ASSERT_TRUE(waitUntil(
        [&] { return login.signUpDialog() != nullptr && login.signUpDialog()->isVisible(); }));
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

    ASSERT_TRUE(loggedIn()) << client.errors().toStdString();
    ASSERT_TRUE(waitUntil([&] { return !login.isVisible(); })) << "the login window steps aside";
    EXPECT_EQ(login.accountList()->topLevelItem(1)->text(0), QStringLiteral("Carol"));

    // Logging off brings the login window back, ready to log in again.
    windows.loginOrLogOff();
    EXPECT_TRUE(login.isVisible());
    EXPECT_EQ(login.loginButton()->text(), QStringLiteral("&Login"));
    login.loginButton()->click();
    ASSERT_TRUE(loggedIn(2)) << client.errors().toStdString();
}

TEST_F(ServerIntegrationTest, SavedAccountsLogInAndWrongPasswordsOrNamesAreRefused) {
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
        EXPECT_FALSE(client.session->online());
        EXPECT_EQ(login.button().caption, QStringLiteral("&Sign Up Now!!"));
    }

    client.prompter.asked.clear();
    client.selectAccount(QStringLiteral("alice"), QStringLiteral("wonderland"));
    login.clickLoginButton();
    ASSERT_TRUE(loggedIn()) << client.errors().toStdString();
    EXPECT_TRUE(client.messages().isEmpty());
    EXPECT_EQ(login.onlineCaption(), QStringLiteral("Tavren Chat Online (Alice)"));
    EXPECT_EQ(login.statusText(), QStringLiteral("Connected!"));
    // The refused tries are still in the list, the good one first.
    EXPECT_TRUE(client.settings->userString().startsWith(QStringLiteral("alice:wonderland;")));
}

TEST_F(ServerIntegrationTest, PingsKeepTheLinkUpAndTheAccountCanBeChanged) {
    ASSERT_TRUE(server.addAccount(QStringLiteral("Alice"), QStringLiteral("wonderland")));
    client.selectAccount(QStringLiteral("Alice"), QStringLiteral("wonderland"));
    client.session->login().clickLoginButton();
    ASSERT_TRUE(loggedIn()) << client.errors().toStdString();

    // Many watchdog intervals pass; the server's pings keep the link alive.
    test::runEventsFor(8 * test::ClientUnderTest::fastOptions().watchdogIntervalMs);
    EXPECT_TRUE(client.session->online());
    EXPECT_EQ(client.wentOffline, 0);

    AccountRequests& requests = client.session->accountRequests();
    ASSERT_TRUE(
        requests.changePassword(QStringLiteral("wonderland"), QStringLiteral("rabbit-hole")));
    ASSERT_TRUE(waitUntil([&] { return !client.messages().isEmpty(); }));
    EXPECT_EQ(client.messages().last(), QStringLiteral("Your password has been changed."));
    EXPECT_EQ(client.settings->userString(), QStringLiteral("Alice:rabbit-hole"));

    QString email;
    QObject::connect(&requests, &AccountRequests::emailReceived,
                     [&](const QString& e) { email = e; });
    ASSERT_TRUE(requests.changeEmail(QStringLiteral("alice@example.org")));
    ASSERT_TRUE(requests.askEmail());
    ASSERT_TRUE(waitUntil([&] { return !email.isEmpty(); }));
    EXPECT_EQ(email, QStringLiteral("alice@example.org"));

    // The changed password works for the next login.
    client.session->login().logOff();
    EXPECT_FALSE(client.session->online());
    client.session->login().clickLoginButton();
    ASSERT_TRUE(loggedIn(2)) << client.errors().toStdString();
}

TEST_F(ServerIntegrationTest, WhenTheServerStopsTheClientSaysSoAndReconnectsWhenItIsBack) {
    ASSERT_TRUE(server.addAccount(QStringLiteral("Alice"), QStringLiteral("wonderland")));
    client.selectAccount(QStringLiteral("Alice"), QStringLiteral("wonderland"));
    client.session->login().clickLoginButton();
    ASSERT_TRUE(loggedIn()) << client.errors().toStdString();
    const quint16 port = server.port();

    server.stop();
    ASSERT_TRUE(waitUntil([&] { return !client.session->online(); }));
    EXPECT_EQ(client.wentOffline, 1);
    EXPECT_TRUE(client.errors().contains(QStringLiteral(
        "Server: You have been disconnected from the server, Auto Relogin Enabled..")));
    EXPECT_TRUE(client.session->console().lines().last().contains(QStringLiteral("disconnected")));
    EXPECT_TRUE(client.messages().isEmpty())
        << "losing an established session is not a message box";

    // While the server is away the countdown keeps trying, quietly.
    ASSERT_TRUE(waitUntil([&] {
        return client.errors().contains(
            QStringLiteral("Server is Offline. Please try again later.."));
    }));
    EXPECT_TRUE(client.messages().isEmpty());
    ASSERT_TRUE(server.start({QStringLiteral("--ping-interval"), QStringLiteral("0.1")}, port));
    ASSERT_TRUE(loggedIn(2)) << client.errors().toStdString();
}

TEST_F(ServerIntegrationTest, AnAbsentServerIsAMessageBoxOnTheFirstTry) {
    const quint16 port = server.port();
    server.stop();
    client.selectAccount(QStringLiteral("Alice"), QStringLiteral("wonderland"));
    client.session->login().clickLoginButton();
    ASSERT_TRUE(waitUntil([&] { return !client.messages().isEmpty(); }));
    EXPECT_EQ(client.messages(),
              QStringList{QStringLiteral("Server is Offline. Please try again later..")});
    EXPECT_EQ(client.session->login().button().caption, QStringLiteral("&Login"));
    EXPECT_EQ(client.session->login().statusText(), QStringLiteral("Error!"));
    test::runEventsFor(600);
    EXPECT_EQ(client.messages().size(), 1) << "no countdown before a first successful login";
    (void)port;
}

}  // namespace
}  // namespace tavren
