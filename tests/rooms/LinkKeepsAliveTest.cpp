#include <gtest/gtest.h>

#include <QDir>
#include <QEventLoop>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTimer>

#include "RoomClient.h"
#include "connection/ClientUnderTest.h"
#include "connection/TavrendProcess.h"
#include "connection/Wait.h"
#include "core/ui/MessageBoxPrompter.h"

namespace tavren {
namespace {

using test::waitUntil;

// A server that gives up on a client after 0.4 s without a "Pong".
class LinkKeepsAliveTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(root.isValid());
        server = std::make_unique<test::TavrendProcess>(
            QDir(root.path()).filePath(QStringLiteral("tavrend.db")));
        ASSERT_TRUE(server->addAccount(QStringLiteral("alice"), QStringLiteral("secret")));
        ASSERT_TRUE(server->addAccount(QStringLiteral("bob"), QStringLiteral("secret")));
        ASSERT_TRUE(server->start({QStringLiteral("--ping-interval"), QStringLiteral("0.1"),
                                   QStringLiteral("--ping-misses"), QStringLiteral("3")}));
    }

    QTemporaryDir root;
    std::unique_ptr<test::TavrendProcess> server;
};

// A handler that runs a nested event loop (a modal window opened while a frame is handled) for
// far longer than the server waits for a "Pong": the pings are still answered, and the frames
// that arrived meanwhile are handled afterwards, in order.
TEST_F(LinkKeepsAliveTest, PingsAreAnsweredWhileAHandlerWaits) {
    test::RoomClient alice;
    test::RoomClient bob;
    alice.logIn(server->port(), QStringLiteral("alice"), QStringLiteral("secret"));
    bob.logIn(server->port(), QStringLiteral("bob"), QStringLiteral("secret"));
    ASSERT_TRUE(alice.waitOnline());
    ASSERT_TRUE(bob.waitOnline());
    const QString general = QStringLiteral("General");
    ASSERT_TRUE(alice.waitForMembers(general, {QStringLiteral("alice"), QStringLiteral("bob")}));

    bool waited = false;
    QObject::connect(&alice.session->server(), &ServerSession::noticeArrived, alice.session.get(),
                     [&] {
                         if (waited) {
                             return;
                         }
                         waited = true;
                         // Meanwhile Bob talks; Alice's client must not lose his lines.
                         QTimer::singleShot(200, [&] {
                             bob.type(general, QStringLiteral("during one"));
                             bob.type(general, QStringLiteral("during two"));
                         });
                         QEventLoop nested;
                         // Longer than the server's patience and the client's own watchdog.
                         QTimer::singleShot(2500, &nested, &QEventLoop::quit);
                         nested.exec();
                     });
    // A name too short for a channel: the server answers with a notice.
    alice.rooms().join(QStringLiteral("ab"));
    ASSERT_TRUE(waitUntil([&] { return waited; }));
    EXPECT_TRUE(alice.session->server().online())
        << server->log().toStdString() << alice.session->server().errorLog().text().toStdString();
    ASSERT_TRUE(alice.waitForLine(general, QStringLiteral("during two")));
    const QStringList during = alice.linesOf(general).filter(QStringLiteral("during "));
    ASSERT_EQ(during.size(), 2);
    EXPECT_TRUE(during[0].contains(QStringLiteral("during one")));
    test::runEventsFor(500);
    EXPECT_TRUE(alice.session->server().online());
    EXPECT_EQ(alice.session->server().connection().phase(), ServerConnection::Phase::Up);
}

// The real message boxes: a notice box left open for longer than the ping time-out does not
// cost the connection, and a notice repeated while its box is open does not stack boxes.
TEST_F(LinkKeepsAliveTest, AnOpenNoticeBoxDoesNotCostTheConnection) {
    QTemporaryDir dir;
    MessageBoxPrompter prompter;
    ClientSession session(dir.path(), dir.filePath(QStringLiteral("settings.ini")),
                          test::ClientUnderTest::fastOptions(), prompter);
    SettingsValues values = session.settings().values();
    values.serverHost = QStringLiteral("127.0.0.1");
    values.serverPort = QString::number(server->port());
    values.tls = false;  // plain: encryption is tested on its own
    session.settings().setValues(values);
    LoginFlow& login = session.server().login();
    login.select(
        session.server().accounts().add(QStringLiteral("alice"), QStringLiteral("secret")));
    login.clickLoginButton();
    ASSERT_TRUE(waitUntil([&] { return session.server().online(); }));

    session.rooms().join(QStringLiteral("ab"));
    ASSERT_TRUE(waitUntil([&] { return prompter.openMessage(QStringLiteral("Attention!")); }));
    QMessageBox* box = prompter.openMessage(QStringLiteral("Attention!"));
    session.rooms().join(QStringLiteral("cd"));
    ASSERT_TRUE(waitUntil([&] { return box->text().contains(QStringLiteral("\"cd\"")); }));
    EXPECT_EQ(prompter.openMessage(QStringLiteral("Attention!")), box);

    test::runEventsFor(2500);
    EXPECT_TRUE(session.server().online());
    EXPECT_TRUE(box->isVisible());
    box->close();
}

}  // namespace
}  // namespace tavren
