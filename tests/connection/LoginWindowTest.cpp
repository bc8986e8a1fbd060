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
    EXPECT_EQ(login.statusText(), QStringLiteral("Connection Closed"));
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

TEST_F(LoginWindowTest, ConsoleSendsTypedLinesOnlyWhileConnected) {
    test::FakePeer server;
    ChatConsole& console = windows.console();
    console.input()->setText(QStringLiteral("/help"));
    emit console.input()->returnPressed();
    EXPECT_TRUE(console.logText().contains(QStringLiteral("Not connected")));

    client.session->link().connectTo(QStringLiteral("127.0.0.1"), server.port(), false);
    ASSERT_TRUE(waitUntil([&] { return client.session->link().isConnected(); }));
    emit console.input()->returnPressed();
    ASSERT_TRUE(
        waitUntil([&] { return server.received(protocol::client_to_server::kAwayStatus); }));
    EXPECT_EQ(server.frames().back().payload, "/help");
    EXPECT_TRUE(console.input()->text().isEmpty());
}

}  // namespace
}  // namespace tavren
