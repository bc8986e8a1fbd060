#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include "RoomClient.h"
#include "connection/TavrendProcess.h"
#include "connection/Wait.h"

namespace tavren {
namespace {

using test::RoomClient;
using test::waitUntil;

const QString kGeneral = QStringLiteral("General");
// Pings five times a second; every answer to one fills the client's flood meter a step, so the
// meter is made large enough not to hold the tests' lines back.
const QStringList kFastPings = {QStringLiteral("--ping-interval"), QStringLiteral("0.2"),
                                QStringLiteral("--flood-lines"), QStringLiteral("100"),
                                QStringLiteral("--flood-interval"), QStringLiteral("0.05")};

class RoomIntegrationTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(root.isValid());
        server = std::make_unique<test::TavrendProcess>(
            QDir(root.path()).filePath(QStringLiteral("tavrend.db")));
        for (const char* name : {"alice", "bob", "carol"}) {
            ASSERT_TRUE(server->addAccount(QString::fromLatin1(name), QStringLiteral("secret")));
        }
        // The clients under test give up after two seconds without a ping.
        ASSERT_TRUE(server->start(kFastPings));
    }

    void logIn(RoomClient& client, const char* name) {
        client.logIn(server->port(), QString::fromLatin1(name), QStringLiteral("secret"));
        ASSERT_TRUE(client.waitOnline()) << server->log().toStdString();
    }

    QTemporaryDir root;
    std::unique_ptr<test::TavrendProcess> server;
};

// Two members land in the server's default room, see each other, talk with smileys and links,
// see every line once and in the order sent, and see each other leave.
TEST_F(RoomIntegrationTest, TwoMembersTalkInTheDefaultRoom) {
    RoomClient alice;
    RoomClient bob;
    logIn(alice, "alice");
    logIn(bob, "bob");
    ASSERT_TRUE(alice.waitForMembers(kGeneral, {QStringLiteral("alice"), QStringLiteral("bob")}))
        << server->log().toStdString();
    ASSERT_TRUE(bob.waitForMembers(kGeneral, {QStringLiteral("alice"), QStringLiteral("bob")}));

    alice.type(kGeneral, QStringLiteral("hello ;5 see www.Example.org :-)"));
    for (RoomClient* client : {&alice, &bob}) {
        ASSERT_TRUE(client->waitForLine(kGeneral, QStringLiteral(">alice:<")));
        const QString line = client->linesOf(kGeneral).filter(QStringLiteral(">alice:<")).first();
        EXPECT_TRUE(line.contains(QStringLiteral("105.gif")));
        EXPECT_TRUE(line.contains(QStringLiteral("149.gif")));
        EXPECT_TRUE(line.contains(QStringLiteral("href= http://www.Example.org >")));
    }
    // Alice sees her own line in her own colours (color9, grey), Bob in the colours he gives
    // other members (color5).
    EXPECT_EQ(alice.linesContaining(kGeneral, QStringLiteral("<font color='808080' face='Arial' "
                                                             "size='2'><b>alice:")),
              1);
    EXPECT_EQ(bob.linesContaining(kGeneral, QStringLiteral("<font color='8080FF' face='Arial' "
                                                           "size='2'><b>alice:")),
              1);

    for (const char* word : {"first", "second", "third"}) {
        bob.type(kGeneral, QStringLiteral("line %1").arg(QLatin1String(word)));
    }
    ASSERT_TRUE(alice.waitForLine(kGeneral, QStringLiteral("line third")));
    const QStringList seen = alice.linesOf(kGeneral).filter(QStringLiteral("line "));
    ASSERT_EQ(seen.size(), 3);
    EXPECT_TRUE(seen[0].contains(QStringLiteral("line first")));
    EXPECT_TRUE(seen[2].contains(QStringLiteral("line third")));
    EXPECT_EQ(bob.linesContaining(kGeneral, QStringLiteral("line second")), 1);

    bob.type(kGeneral, QStringLiteral("/leave"));
    EXPECT_EQ(bob.rooms().count(), 0);
    ASSERT_TRUE(alice.waitForMembers(kGeneral, {QStringLiteral("alice")}));
    EXPECT_TRUE(alice.waitForLine(kGeneral, QStringLiteral("bob has left the channel.")));
}

// Joining a channel that does not exist creates it; the server's commands answer in the
// channel; a member's nickname format reaches the others; the ignore list silences a member.
TEST_F(RoomIntegrationTest, MemberChannelsServerCommandsFormatsAndIgnoring) {
    RoomClient alice;
    RoomClient bob;
    logIn(alice, "alice");
    logIn(bob, "bob");
    const QString lounge = QStringLiteral("Poker Lounge");
    alice.type(kGeneral, QStringLiteral("/join ") + lounge);
    ASSERT_TRUE(alice.waitForMembers(lounge, {QStringLiteral("alice")}));
    // The member who created it hosts it.
    EXPECT_EQ(alice.rooms().room(alice.rooms().roomIndex(lounge)).members,
              QStringList(QStringLiteral("@alice")));
    bob.rooms().join(lounge);
    ASSERT_TRUE(bob.waitForMembers(lounge, {QStringLiteral("alice"), QStringLiteral("bob")}));

    alice.type(lounge, QStringLiteral("/time"));
    EXPECT_TRUE(alice.waitForLine(lounge, QStringLiteral("Server time: ")));
    alice.type(lounge, QStringLiteral("/nosuchcommand"));
    EXPECT_TRUE(alice.waitForLine(lounge, QStringLiteral("Unknown command")));
    // Server answers go to the one who asked.
    test::runEventsFor(200);
    EXPECT_EQ(bob.linesContaining(lounge, QStringLiteral("Server time: ")), 0);

    ASSERT_TRUE(alice.session->server().accountRequests().changeNicknameFormat(
        QStringLiteral("16711680;255;True;False;True;3;Courier New")));
    ASSERT_TRUE(waitUntil([&] {
        return alice.session->server().login().accountData().contains(QStringLiteral("Courier"));
    }));
    alice.type(lounge, QStringLiteral("styled words"));
    ASSERT_TRUE(bob.waitForLine(lounge, QStringLiteral("styled words")));
    const QString styled = bob.linesOf(lounge).filter(QStringLiteral("styled words")).first();
    EXPECT_TRUE(styled.contains(QStringLiteral("<font color='0000FF' face='Arial' size='3'>")));
    EXPECT_TRUE(styled.contains(QStringLiteral("<u>")));
    EXPECT_TRUE(styled.contains(QStringLiteral("Courier New")));

    bob.session->ignoreList().add(QStringLiteral("ALICE"));
    alice.type(lounge, QStringLiteral("you cannot hear me"));
    alice.type(lounge, QStringLiteral("marker"));
    ASSERT_TRUE(alice.waitForLine(lounge, QStringLiteral("marker")));
    test::runEventsFor(300);
    EXPECT_EQ(bob.linesContaining(lounge, QStringLiteral("you cannot hear me")), 0);
}

// After the server restarts, the client logs in again by itself and gets back into every
// channel it had open, saying so in each; the perform list runs at every login.
TEST_F(RoomIntegrationTest, ChannelsComeBackAfterTheServerRestarts) {
    RoomClient carol;
    carol.session->performList().add(QStringLiteral("/join Night Owls"));
    logIn(carol, "carol");
    const QString owls = QStringLiteral("Night Owls");
    ASSERT_TRUE(carol.waitForMembers(owls, {QStringLiteral("carol")}));
    // The perform list chose the channel, so the default room is not joined.
    test::runEventsFor(200);
    EXPECT_EQ(carol.rooms().roomIndex(kGeneral), -1);
    carol.rooms().join(kGeneral);
    ASSERT_TRUE(carol.waitForMembers(kGeneral, {QStringLiteral("carol")}));

    const quint16 port = server->port();
    server->stop();
    ASSERT_TRUE(waitUntil([&] { return !carol.session->server().online(); }));
    EXPECT_TRUE(carol.rooms().room(carol.rooms().roomIndex(kGeneral)).members.isEmpty());
    ASSERT_TRUE(server->start(kFastPings, port));
    ASSERT_TRUE(carol.waitOnline()) << carol.session->server().errorLog().text().toStdString();
    EXPECT_TRUE(carol.waitForLine(owls, QStringLiteral("Rejoining chat room in ")));
    EXPECT_TRUE(carol.waitForLine(kGeneral, QStringLiteral("Rejoining chat room in 2 second(s).")));
    EXPECT_TRUE(carol.waitForMembers(owls, {QStringLiteral("carol")}));
    EXPECT_TRUE(carol.waitForMembers(kGeneral, {QStringLiteral("carol")}))
        << carol.linesOf(kGeneral).join(QLatin1Char('\n')).toStdString() << "\n"
        << server->log().toStdString();
    EXPECT_EQ(carol.rooms().count(), 2);
}

}  // namespace
}  // namespace tavren
