// Channels found, created and run through the real tavrend with the real client session layers:
// a host creates a channel with a password, invites a member who joins through the invitation,
// lets a third in with the password and kicks her; staff ban and suspend, and the bans hold
// after the server restarts.
#include <gtest/gtest.h>

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

#include "RoomClient.h"
#include "connection/TavrendProcess.h"
#include "connection/Wait.h"
#include "rooms/ChannelCreation.h"
#include "rooms/RoomModeration.h"

namespace tavren {
namespace {

using test::RoomClient;
using test::waitUntil;

const QString kGarden = QStringLiteral("Secret Garden");
const QString kGeneral = QStringLiteral("General");
// Pings five times a second; every answer fills the client's flood meter a step, so the meter is
// made large enough not to hold the tests' lines back.
const QStringList kFastPings = {QStringLiteral("--ping-interval"),  QStringLiteral("0.2"),
                                QStringLiteral("--flood-lines"),    QStringLiteral("100"),
                                QStringLiteral("--flood-interval"), QStringLiteral("0.05")};

class ModerationIntegrationTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(root.isValid());
        database = QDir(root.path()).filePath(QStringLiteral("tavrend.db"));
        server = std::make_unique<test::TavrendProcess>(database);
        for (const char* name : {"alice", "bob", "carol"}) {
            ASSERT_TRUE(server->addAccount(QString::fromLatin1(name), QStringLiteral("secret")));
        }
        // Staff are made by the operator, as the README says.
        QProcess add;
        add.start(test::TavrendProcess::binary(),
                  {QStringLiteral("--db"), database, QStringLiteral("account"),
                   QStringLiteral("add"), QStringLiteral("root"), QStringLiteral("secret"),
                   QStringLiteral("--staff"), QStringLiteral("3")});
        ASSERT_TRUE(add.waitForFinished(30000));
        ASSERT_EQ(add.exitCode(), 0) << add.readAllStandardError().toStdString();
        ASSERT_TRUE(server->start(kFastPings));
    }

    // Logs in; a member who may join channels lands in the default room.
    void logIn(RoomClient& client, const char* name, bool landsInGeneral = true) {
        client.logIn(server->port(), QString::fromLatin1(name), QStringLiteral("secret"));
        ASSERT_TRUE(client.waitOnline()) << server->log().toStdString();
        if (landsInGeneral) {
            ASSERT_TRUE(waitUntil([&] { return client.rooms().roomIndex(kGeneral) >= 0; }));
        }
    }

    static void select(RoomClient& client, const QString& channel) {
        client.rooms().select(client.rooms().roomIndex(channel));
    }

    QTemporaryDir root;
    QString database;
    std::unique_ptr<test::TavrendProcess> server;
};

TEST_F(ModerationIntegrationTest, AHostInvitesAdmitsAndKicksAndStaffBansHoldAfterARestart) {
    RoomClient alice;
    RoomClient bob;
    RoomClient carol;
    RoomClient staff;
    logIn(alice, "alice");
    logIn(bob, "bob");
    logIn(carol, "carol");

    // Alice creates a channel with a password and hosts it.
    ChannelCreation creation(alice.session->server().link());
    ASSERT_TRUE(
        creation.start(kGarden, QStringLiteral("roses only"), true, QStringLiteral("rose")));
    ASSERT_TRUE(alice.waitForMembers(kGarden, {QStringLiteral("alice")}))
        << server->log().toStdString();
    EXPECT_EQ(alice.rooms().room(alice.rooms().roomIndex(kGarden)).members,
              QStringList(QStringLiteral("@alice")));
    EXPECT_TRUE(alice.waitForLine(kGarden, QStringLiteral("Topic: roses only")));

    // Bob joins through Alice's invitation, without the password.
    QList<RoomInvitation> invited;
    QObject::connect(&bob.rooms().invitations(), &RoomInvitations::invited,
                     [&](const RoomInvitation& invitation) { invited << invitation; });
    ASSERT_TRUE(alice.rooms().invitations().invite(QStringLiteral("bob"), kGarden, alice.prompter));
    ASSERT_TRUE(waitUntil([&] { return !invited.isEmpty(); }));
    EXPECT_EQ(invited.first().inviter, QStringLiteral("alice"));
    EXPECT_TRUE(bob.rooms().invitations().accept(invited.first()));
    ASSERT_TRUE(bob.waitForMembers(kGarden, {QStringLiteral("alice"), QStringLiteral("bob")}));

    // Carol is asked for the password; a wrong one is refused, the right one lets her in.
    QStringList questions;
    QObject::connect(&carol.rooms(), &RoomSession::passwordRequested,
                     [&](const QString&, const QString& sentence) { questions << sentence; });
    carol.rooms().join(kGarden);
    ASSERT_TRUE(waitUntil([&] { return questions.size() == 1; }));
    EXPECT_EQ(questions.last(), QStringLiteral("This channel asks for a password."));
    carol.rooms().joinWithPassword(kGarden, QStringLiteral("tulip"));
    ASSERT_TRUE(waitUntil([&] { return questions.size() == 2; }));
    EXPECT_EQ(questions.last(), QStringLiteral("The password was wrong. Try again."));
    EXPECT_EQ(carol.rooms().roomIndex(kGarden), -1);
    carol.rooms().joinWithPassword(kGarden, QStringLiteral("rose"));
    ASSERT_TRUE(alice.waitForMembers(
        kGarden, {QStringLiteral("alice"), QStringLiteral("bob"), QStringLiteral("carol")}));

    // Alice kicks Carol from the member menu: Carol's tab closes and she is told why.
    QStringList removals;
    QObject::connect(&carol.rooms(), &RoomSession::removedFromRoom,
                     [&](const QString& channel, const QString& why) {
                         removals << channel + QLatin1Char('|') + why;
                     });
    select(alice, kGarden);
    alice.prompter.texts = {QStringLiteral("  too many thorns ")};
    ASSERT_TRUE(RoomModeration(alice.rooms(), alice.prompter)
                    .onMemberItem(QStringLiteral("kick"), QStringLiteral("carol")));
    ASSERT_TRUE(waitUntil([&] { return !removals.isEmpty(); }));
    EXPECT_EQ(removals.first(),
              QStringLiteral("Secret Garden|You were kicked by alice: too many thorns"));
    EXPECT_EQ(carol.rooms().roomIndex(kGarden), -1);
    EXPECT_TRUE(
        bob.waitForLine(kGarden, QStringLiteral("carol was kicked by alice: too many thorns")));
    // A member may not kick; the server says so in the channel.
    select(bob, kGarden);
    bob.prompter.texts = {QStringLiteral("No Reason")};
    RoomModeration(bob.rooms(), bob.prompter)
        .onMemberItem(QStringLiteral("kick"), QStringLiteral("alice"));
    EXPECT_TRUE(bob.waitForLine(
        kGarden, QStringLiteral("Only the channel host or staff can kick members.")));

    // Staff ban Carol from every channel and suspend Bob.
    logIn(staff, "root");
    select(staff, kGeneral);
    staff.prompter.texts = {QStringLiteral("No Reason")};
    ASSERT_TRUE(RoomModeration(staff.rooms(), staff.prompter)
                    .onMemberItem(QStringLiteral("mban"), QStringLiteral("carol")));
    ASSERT_TRUE(waitUntil([&] { return carol.rooms().roomIndex(kGeneral) < 0; }));
    EXPECT_TRUE(removals.last().startsWith(
        QStringLiteral("General|You were banned from every channel by root")));
    QStringList carolNotices;
    QObject::connect(&carol.session->server(), &ServerSession::noticeArrived,
                     [&](const QString& text) { carolNotices << text; });
    carol.rooms().join(QStringLiteral("Night Owls"));
    ASSERT_TRUE(waitUntil([&] { return !carolNotices.isEmpty(); }));
    EXPECT_EQ(carolNotices.last(), QStringLiteral("You cannot join \"Night Owls\": you are banned "
                                                  "from every channel of this server."));

    staff.prompter.answers = {Prompter::Answer::Yes};
    ASSERT_TRUE(RoomModeration(staff.rooms(), staff.prompter)
                    .onMemberItem(QStringLiteral("suspendacc"), QStringLiteral("bob")));
    const QString suspended = QStringLiteral("Your account is suspended");
    const auto bobWasRefused = [&] {
        for (const auto& asked : bob.prompter.asked) {
            if (asked.text.startsWith(suspended)) {
                return true;
            }
        }
        return false;
    };
    // Bob is logged out with a notice (after which his client does not come straight back), and
    // his next login is refused.
    ASSERT_TRUE(waitUntil([&] { return !bob.session->server().online(); }));
    bob.session->server().login().clickLoginButton();
    ASSERT_TRUE(waitUntil(bobWasRefused)) << server->log().toStdString();
    EXPECT_FALSE(bob.session->server().online());

    // After a restart the ban and the suspension still hold (fresh clients log in, so that
    // nothing here depends on how soon the old ones come back by themselves).
    // The clients in use log off first, so that none of them comes back by itself and replaces
    // the fresh login of its account.
    for (RoomClient* client : {&alice, &carol, &staff}) {
        ASSERT_EQ(client->session->server().login().button().kind, LoginButton::Kind::Cancel);
        client->session->server().login().clickLoginButton();
    }
    const quint16 port = server->port();
    server->stop();
    ASSERT_TRUE(server->start(kFastPings, port));
    RoomClient carolAgain;
    RoomClient staffAgain;
    logIn(carolAgain, "carol", false);
    logIn(staffAgain, "root");
    QStringList notices;
    QObject::connect(&carolAgain.session->server(), &ServerSession::noticeArrived,
                     [&](const QString& text) { notices << text; });
    EXPECT_EQ(carolAgain.rooms().roomIndex(kGeneral), -1) << "the default room is refused too";
    carolAgain.rooms().join(kGarden);
    const QString refused = QStringLiteral(
        "You cannot join \"Secret Garden\": you are banned from every channel of this server.");
    EXPECT_TRUE(waitUntil([&] { return notices.contains(refused); }))
        << notices.join('\n').toStdString();
    // Bob's refused connection went with the old server; once his button offers the login
    // again, he tries.
    bob.prompter.asked.clear();
    ASSERT_TRUE(waitUntil(
        [&] { return bob.session->server().login().button().kind == LoginButton::Kind::Login; }));
    bob.session->server().login().clickLoginButton();
    ASSERT_TRUE(waitUntil(bobWasRefused));

    // Lifted, both are back.
    staffAgain.type(kGeneral, QStringLiteral("/unban carol"));
    staffAgain.type(kGeneral, QStringLiteral("/unsuspend bob"));
    ASSERT_TRUE(
        staffAgain.waitForLine(kGeneral, QStringLiteral("bob's account is no longer suspended")));
    EXPECT_TRUE(staffAgain.waitForLine(kGeneral, QStringLiteral("carol may come back")));
    carolAgain.rooms().join(kGeneral);
    EXPECT_TRUE(
        carolAgain.waitForMembers(kGeneral, {QStringLiteral("carol"), QStringLiteral("root")}));
}

}  // namespace
}  // namespace tavren
