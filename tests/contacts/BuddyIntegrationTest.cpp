#include <gtest/gtest.h>

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <functional>

#include "config/SoundSlots.h"
#include "connection/TavrendProcess.h"
#include "connection/Wait.h"
#include "contacts/BuddyEditor.h"
#include "contacts/BuddyList.h"
#include "rooms/RoomClient.h"

namespace tavren {
namespace {

using test::RoomClient;
using test::waitUntil;
using Image = BuddyPresence::Image;

const QStringList kFastPings = {QStringLiteral("--ping-interval"), QStringLiteral("0.2")};

class BuddyIntegrationTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(root.isValid());
        server = std::make_unique<test::TavrendProcess>(
            QDir(root.path()).filePath(QStringLiteral("tavrend.db")));
        for (const char* name : {"alice", "bob", "carol"}) {
            ASSERT_TRUE(server->addAccount(QString::fromLatin1(name), QStringLiteral("secret")));
        }
    }

    void start(const QStringList& extra = {}) {
        // The clients under test give up after two seconds without a ping.
        ASSERT_TRUE(server->start(kFastPings + extra));
    }

    void logIn(RoomClient& client, const char* name) {
        client.logIn(server->port(), QString::fromLatin1(name), QStringLiteral("secret"));
        ASSERT_TRUE(client.waitOnline()) << server->log().toStdString();
    }

    // Waits until the list reads `serialised` and every buddy in it has had its record.
    static bool waitForList(BuddyList& list, const QString& serialised) {
        return waitUntil([&] {
            if (list.serialised() != serialised) {
                return false;
            }
            for (const BuddyFolder& folder : list.folders()) {
                for (const QString& name : folder.buddies) {
                    if (!list.presence(name).known) {
                        return false;
                    }
                }
            }
            return true;
        });
    }

    // Makes an edit and waits for the server's answer to it: the list changes once at once
    // and once more when the server sends back what it stored.
    static bool editAndWaitForAnswer(BuddyList& list, const std::function<bool()>& edit) {
        QSignalSpy changes(&list, &BuddyList::listChanged);
        return edit() && waitUntil([&] { return changes.count() >= 2; });
    }

    static bool waitForImage(BuddyList& list, const QString& name, Image image) {
        return waitUntil([&] { return list.image(name) == image; });
    }

    QTemporaryDir root;
    std::unique_ptr<test::TavrendProcess> server;
};

// The list belongs to the server: what one login saves, in the account's spelling and without
// strangers, is there at the next login, after the server restarted.
TEST_F(BuddyIntegrationTest, TheListIsKeptByTheServerAcrossARestart) {
    start();
    RoomClient alice;
    QSignalSpy notices(&alice.session->server(), &ServerSession::noticeArrived);
    logIn(alice, "alice");
    BuddyList& list = alice.session->buddies();
    EXPECT_EQ(list.caption(), QStringLiteral("alice's Buddylist"));

    ASSERT_TRUE(editAndWaitForAnswer(list, [&] {
        list.addBuddy(QStringLiteral("BOB"));
        return true;
    }));
    ASSERT_TRUE(waitForList(list, QStringLiteral("Buddies.bob:"))) << server->log().toStdString();
    EXPECT_EQ(list.image(QStringLiteral("bob")), Image::Offline);

    BuddyEditor editor(list, alice.prompter);
    ASSERT_TRUE(editor.addFolder(QStringLiteral("Work")));
    ASSERT_TRUE(editor.moveBuddy(QStringLiteral("bob"), QStringLiteral("Work")));
    ASSERT_TRUE(editor.addFolder(QStringLiteral("Friends & Caf\u00E9")));
    ASSERT_TRUE(editor.addBuddy(QStringLiteral("Carol"), QStringLiteral("Friends & Caf\u00E9")));
    ASSERT_TRUE(editor.addBuddy(QStringLiteral("zed"), QStringLiteral("Friends & Caf\u00E9")));
    ASSERT_TRUE(editAndWaitForAnswer(list, [&] { return editor.save(); }));
    const QString kept = QStringLiteral("Work.bob:Friends & Caf\u00E9.carol:");
    ASSERT_TRUE(waitForList(list, kept)) << list.serialised().toStdString();
    ASSERT_TRUE(waitUntil([&] { return notices.count() > 0; }));
    EXPECT_EQ(notices[0][0].toString(),
              QStringLiteral("There is no member called zed; it was left out of your buddy list."));

    // Removing from the main window's menu sends the list too.
    ASSERT_TRUE(
        editAndWaitForAnswer(list, [&] { return list.removeBuddy(QStringLiteral("carol")); }));
    ASSERT_TRUE(waitForList(list, QStringLiteral("Work.bob:")));
    ASSERT_TRUE(editAndWaitForAnswer(
        list, [&] { return list.moveBuddy(QStringLiteral("bob"), QStringLiteral("Poker Pals")); }));
    ASSERT_TRUE(waitForList(list, QStringLiteral("Poker Pals.bob:")));

    const quint16 port = server->port();
    server->stop();
    ASSERT_TRUE(waitUntil([&] { return !alice.session->server().online(); }));
    EXPECT_TRUE(list.folders().empty());
    EXPECT_EQ(list.caption(), QStringLiteral("Buddies (0)"));
    ASSERT_TRUE(server->start(kFastPings, port));
    ASSERT_TRUE(alice.waitOnline());
    EXPECT_TRUE(waitForList(list, QStringLiteral("Poker Pals.bob:")))
        << list.serialised().toStdString();

    // Emptied, the list stays empty at the next login.
    ASSERT_TRUE(editAndWaitForAnswer(list, [&] { return list.replace({}); }));
    EXPECT_TRUE(list.folders().empty());
    alice.session->server().login().logOff();
    ASSERT_TRUE(waitUntil([&] { return !alice.session->server().online(); }));
    logIn(alice, "alice");
    test::runEventsFor(300);
    EXPECT_TRUE(list.folders().empty()) << list.serialised().toStdString();
}

// A buddy's picture and tooltip follow the buddy logging in (into the default channel), going
// away and coming back, and logging out; the online sound and signal come only with those
// changes, and a member who is nobody's buddy changes nothing.
TEST_F(BuddyIntegrationTest, PresenceFollowsLoginAwayAndLogout) {
    start();
    RoomClient alice;
    logIn(alice, "alice");
    BuddyList& list = alice.session->buddies();
    list.addBuddy(QStringLiteral("bob"));
    ASSERT_TRUE(waitForList(list, QStringLiteral("Buddies.bob:")));
    QSignalSpy online(&list, &BuddyList::buddyOnlineChanged);
    QSignalSpy sounds(&list, &BuddyList::soundRequested);
    QSignalSpy presence(&list, &BuddyList::presenceChanged);

    RoomClient bob;
    logIn(bob, "bob");
    ASSERT_TRUE(waitUntil([&] { return list.presence(QStringLiteral("bob")).inChannel; }));
    EXPECT_EQ(list.image(QStringLiteral("bob")), Image::Online);
    EXPECT_TRUE(
        list.tooltip(QStringLiteral("bob")).endsWith(QStringLiteral("In Channel.. General")));
    EXPECT_EQ(list.folderCaption(list.folders()[0]), QStringLiteral("Buddies (1/1)"));
    ASSERT_EQ(online.count(), 1);
    EXPECT_TRUE(online[0][1].toBool());
    ASSERT_EQ(sounds.count(), 1);
    EXPECT_EQ(sounds[0][0].toInt(), SoundSlots::BuddyOnline);

    bob.session->awayStatus().goAway(QStringLiteral("gone fishing; back soon"));
    ASSERT_TRUE(waitForImage(list, QStringLiteral("bob"), Image::Unavailable));
    EXPECT_TRUE(list.tooltip(QStringLiteral("bob"))
                    .contains(QStringLiteral("Away:  gone fishing; back soon")));
    bob.session->awayStatus().comeBack();
    ASSERT_TRUE(waitForImage(list, QStringLiteral("bob"), Image::Online));

    const int changesBefore = static_cast<int>(presence.count());
    RoomClient carol;
    logIn(carol, "carol");
    test::runEventsFor(300);
    EXPECT_EQ(presence.count(), changesBefore);

    bob.session->server().login().logOff();
    ASSERT_TRUE(waitForImage(list, QStringLiteral("bob"), Image::Offline));
    ASSERT_EQ(online.count(), 2);
    EXPECT_FALSE(online[1][1].toBool());
    ASSERT_EQ(sounds.count(), 2);
    EXPECT_EQ(sounds[1][0].toInt(), SoundSlots::BuddyOffline);
    EXPECT_EQ(list.folderCaption(list.folders()[0]), QStringLiteral("Buddies (0/1)"));
}

// A buddy who sends nothing for a while turns idle ("u"), and active again with the next line.
TEST_F(BuddyIntegrationTest, IdleBuddiesShowTheThirdPicture) {
    start({QStringLiteral("--idle-after"), QStringLiteral("1")});
    RoomClient alice;
    logIn(alice, "alice");
    BuddyList& list = alice.session->buddies();
    list.addBuddy(QStringLiteral("bob"));
    ASSERT_TRUE(waitForList(list, QStringLiteral("Buddies.bob:")));
    RoomClient bob;
    logIn(bob, "bob");
    ASSERT_TRUE(waitUntil([&] { return list.presence(QStringLiteral("bob")).idle; }))
        << server->log().toStdString();
    EXPECT_EQ(list.image(QStringLiteral("bob")), Image::Unavailable);
    EXPECT_TRUE(list.tooltip(QStringLiteral("bob")).endsWith(QStringLiteral("and Idle")));
    ASSERT_TRUE(bob.waitForMembers(QStringLiteral("General"),
                                   {QStringLiteral("alice"), QStringLiteral("bob")}));
    bob.type(QStringLiteral("General"), QStringLiteral("I am here"));
    EXPECT_TRUE(waitUntil([&] { return !list.presence(QStringLiteral("bob")).idle; }));
}

}  // namespace
}  // namespace tavren
