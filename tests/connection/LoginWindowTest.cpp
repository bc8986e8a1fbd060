#include <gtest/gtest.h>

#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>

#include "ClientUnderTest.h"
#include "FakePeer.h"
#include "Wait.h"
#include "core/protocol/Catalogue.h"
#include "core/ui/ChatConsole.h"
#include "core/ui/ChatError.h"
#include "core/ui/ChatLogin.h"
#include "core/ui/ConnectionWindows.h"

namespace tavren {
namespace {

using test::waitUntil;

class LoginWindowTest : public ::testing::Test {
  protected:
    test::ClientUnderTest client;
    QWidget owner;
    ConnectionWindows windows{*client.session, client.prompter, &owner};
};

TEST_F(LoginWindowTest, ShowsTheFlowsStateAndForwardsTheUsersChoices) {
    client.selectAccount(QStringLiteral("alice"), QStringLiteral("secret"));
    ChatLogin& login = windows.login();
    login.show();

    QTreeWidget* list = login.accountList();
    ASSERT_EQ(list->topLevelItemCount(), 2);
    EXPECT_EQ(list->topLevelItem(0)->text(0), QStringLiteral("*new_user*"));
    EXPECT_EQ(list->topLevelItem(1)->text(0), QStringLiteral("alice"));
    EXPECT_NE(list->topLevelItem(1)->text(1), QStringLiteral("secret")) << "passwords are masked";
    EXPECT_EQ(login.versionText(), LoginFlow::versionText());
    EXPECT_EQ(login.statusText(), QStringLiteral("Not connected")) << "nothing tried yet";
    EXPECT_EQ(login.loginButton()->text(), QStringLiteral("&Login"));
    EXPECT_EQ(login.loginButton()->toolTip(),
              QStringLiteral("Press to login to the Tavren Chat Service!"));

    list->setCurrentItem(list->topLevelItem(0));
    EXPECT_EQ(client.session->login().selectedRow(), 0);
    EXPECT_EQ(login.loginButton()->text(), QStringLiteral("&Sign Up Now!!"));
    EXPECT_EQ(login.loginButton()->toolTip(), QStringLiteral("Press to sign up!"));

    // Removing asks first; only Yes removes.
    list->setCurrentItem(list->topLevelItem(1));
    client.prompter.answers = {Prompter::Answer::No, Prompter::Answer::Yes};
    login.removeAccount();
    EXPECT_EQ(list->topLevelItemCount(), 2);
    login.removeAccount();
    EXPECT_EQ(list->topLevelItemCount(), 1);
    EXPECT_TRUE(client.settings->userString().isEmpty());
}

TEST_F(LoginWindowTest, ErrorWindowComesForwardWithTheNewestLineAtTheCaret) {
    ChatError& errors = windows.errors();
    EXPECT_FALSE(errors.isVisible());

    client.session->errorLog().setClock([] { return QTime(21, 4, 5); });
    client.session->errorLog().ShowErrorMessage(QStringLiteral("first"),
                                                QStringLiteral("Connection"));
    client.session->errorLog().ShowErrorMessage(QStringLiteral("second"));
    EXPECT_TRUE(errors.isVisible());
    EXPECT_EQ(errors.headingText(), QStringLiteral("Tavren Error Message: Connection"));
    EXPECT_EQ(errors.logText(), QStringLiteral("(9:04:05 PM) ~ first\n(9:04:05 PM) ~ second\n"));
    EXPECT_EQ(errors.caretPosition(),
              static_cast<int>(QStringLiteral("(9:04:05 PM) ~ first\n").size()));
}

TEST_F(LoginWindowTest, ConsoleAnswersGoToItsLogAndOnlyNoticesNobodyAskedForGetABox) {
    namespace in = protocol::server_to_client;
    test::FakePeer server;
    server.setResponder([](test::FakePeer& peer, const protocol::Frame& frame) {
        if (frame.code != protocol::client_to_server::kAwayStatus) {
            return;
        }
        if (frame.payload == "/help") {
            peer.send(in::kListUpdate,
                      "/help - the commands this server knows\x01"
                      "/away TEXT - go away with a message\x01");
        } else if (frame.payload.rfind("/away", 0) != 0) {
            peer.send(protocol::CodePair{4, 1}, "Unknown command \"/foo\".");
        }
        // "/away" is answered with the away state, which is not the console's.
    });
    ChatConsole& console = windows.console();
    const auto type = [&](const char* line) {
        console.input()->setText(QString::fromLatin1(line));
        emit console.input()->returnPressed();
    };
    type("/help");
    EXPECT_TRUE(console.logText().contains(QStringLiteral("Not connected")));
    EXPECT_EQ(console.input()->text(), QStringLiteral("/help")) << "kept for another try";

    client.session->link().connectTo(QStringLiteral("127.0.0.1"), server.port(), false);
    ASSERT_TRUE(waitUntil([&] { return client.session->link().isConnected(); }));
    emit console.input()->returnPressed();
    ASSERT_TRUE(waitUntil(
        [&] { return console.logText().contains(QStringLiteral("go away with a message")); }));
    EXPECT_EQ(server.frames().back().payload, "/help");
    EXPECT_TRUE(console.input()->text().isEmpty());
    // The list is in the log, one entry a line, whole.
    EXPECT_TRUE(
        console.logText().contains(QStringLiteral("The server sent a list of 2 entries:\n"
                                                  "    /help - the commands this server knows\n"
                                                  "    /away TEXT - go away with a message")))
        << console.logText().toStdString();

    // The answer to a typed line is read in the log; a box would take the keyboard.
    type("/foo bar baz");
    ASSERT_TRUE(waitUntil(
        [&] { return console.logText().contains(QStringLiteral("Unknown command \"/foo\".")); }));
    EXPECT_TRUE(client.messages().isEmpty());
    EXPECT_EQ(client.session->console().awaitingAnswers(), 0);

    // After "/away" no notice is owed, so the next one is the server's own and gets a box.
    type("/away lunch");
    ASSERT_TRUE(waitUntil([&] { return server.frames().back().payload == "/away lunch"; }));
    server.send(protocol::CodePair{4, 1}, "Maintenance at noon.");
    ASSERT_TRUE(waitUntil([&] { return !client.messages().isEmpty(); }));
    EXPECT_EQ(client.messages(), QStringList{QStringLiteral("Maintenance at noon.")});
    EXPECT_EQ(client.prompter.asked.back().title, QStringLiteral("Attention!"));
}

}  // namespace
}  // namespace tavren
