#include <gtest/gtest.h>

#include <QAction>
#include <QDir>
#include <QLabel>
#include <QMenu>
#include <QTemporaryDir>
#include <QToolButton>

#include "connection/TavrendProcess.h"
#include "connection/Wait.h"
#include "core/ClientSession.h"
#include "core/ServerTrust.h"
#include "core/Startup.h"
#include "core/ui/ChatMain.h"
#include "support/ScriptedPrompter.h"

namespace tavren {
namespace {

// The main window against the real server: logging in (encrypted, the server's certificate
// vouched for as scripts/run.sh does) turns the whole shell online, with the padlock shut, and
// the server going away turns it back, with the commands that need a login following along.
TEST(MainWindowOnlineTest, FollowsLoginAndTheServerGoingAway) {
    QTemporaryDir root;
    ASSERT_TRUE(root.isValid());
    qputenv("TAVREN_HOME", root.path().toUtf8());
    test::TavrendProcess server(QDir(root.path()).filePath(QStringLiteral("tavrend.db")));
    ASSERT_TRUE(server.addAccount(QStringLiteral("Alice"), QStringLiteral("wonderland")));
    ASSERT_TRUE(server.start());

    test::ScriptedPrompter prompter;
    ClientSession session(root.path(), nullptr, prompter);
    ChatMain window(session);
    Startup startup(root.path(), prompter);
    startup.loadUserData(session);
    SettingsValues values = session.settings().values();
    values.serverHost = QStringLiteral("127.0.0.1");
    values.serverPort = QString::number(server.port());
    session.settings().setValues(values);
    session.settings().setKnownServer(ServerTrust::keyFor(values.serverHost, server.port()),
                                      server.fingerprint());
    window.show();

    LoginFlow& login = session.server().login();
    login.select(
        session.server().accounts().add(QStringLiteral("Alice"), QStringLiteral("wonderland")));
    login.clickLoginButton();
    ASSERT_TRUE(test::waitUntil([&] { return session.server().online(); }))
        << server.log().toStdString();

    EXPECT_EQ(window.windowTitle(), QStringLiteral("Tavren Chat Online (Alice)"));
    EXPECT_EQ(window.action(QStringLiteral("loginoff"))->text(), QStringLiteral("Log &Off"));
    EXPECT_TRUE(window.action(QStringLiteral("currentnick"))->isEnabled());
    EXPECT_TRUE(window.action(QStringLiteral("changepassword"))->isEnabled());
    const auto* online = window.findChild<QLabel*>(QStringLiteral("onlineLabel"));
    ASSERT_NE(online, nullptr);
    EXPECT_TRUE(
        test::waitUntil([&] { return online->text().startsWith(QStringLiteral("Online: ")); }));
    const auto* padlock = window.findChild<QLabel*>(QStringLiteral("encryptionPadlock"));
    ASSERT_NE(padlock, nullptr);
    EXPECT_TRUE(padlock->isVisible());
    EXPECT_TRUE(padlock->toolTip().startsWith(QStringLiteral("Encrypted (TLS 1.3)")));
    EXPECT_TRUE(padlock->toolTip().contains(server.fingerprint()));
    EXPECT_TRUE(prompter.asked.empty()) << "a vouched-for certificate is not asked about";

    // Going away from the status button's menu, and coming back, as the server confirms it.
    const auto awayAction = [&](const char* key) {
        return window.awayMenu()->findChild<QAction*>(QString::fromLatin1(key));
    };
    auto* status = window.findChild<QToolButton*>(QStringLiteral("statusButton"));
    ASSERT_NE(status, nullptr);
    ASSERT_TRUE(awayAction("awy1")->isEnabled());
    awayAction("awy1")->trigger();
    ASSERT_TRUE(test::waitUntil([&] { return session.awayStatus().away(); }));
    EXPECT_EQ(session.awayStatus().message(), QStringLiteral("I'm playing a game right now."));
    EXPECT_EQ(status->text(), QStringLiteral("Away"));
    EXPECT_EQ(awayAction("awy0"), nullptr);
    awayAction("back")->trigger();
    ASSERT_TRUE(test::waitUntil([&] { return !session.awayStatus().away(); }));
    EXPECT_EQ(status->text(), QStringLiteral("Active"));

    server.stop();
    ASSERT_TRUE(test::waitUntil([&] { return !session.server().online(); }));
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Tavren Chat Offline (?\?)"));
    EXPECT_FALSE(padlock->isVisible());
    // The server went away unannounced, so the client is on its way back and says so.
    EXPECT_EQ(online->text(), QStringLiteral("Offline, reconnecting.."));
    EXPECT_TRUE(online->toolTip().contains(QStringLiteral("disconnected")));
    EXPECT_EQ(window.connectedTimeText(), QStringLiteral("00:00:00:00"));
    EXPECT_EQ(window.action(QStringLiteral("loginoff"))->text(), QStringLiteral("&Login.."));
    EXPECT_FALSE(window.action(QStringLiteral("changepassword"))->isEnabled());
    EXPECT_FALSE(awayAction("awy0")->isEnabled());
}

}  // namespace
}  // namespace tavren
