// Mail, member search and profiles between real client sessions through the real tavrend: mail
// to two members, one of them offline, found at once or at the next login; replies; deletes that
// stay deleted after a server restart; a profile at the bound, holding ":", read by another
// member; a member found by name and added as a buddy; e-mail addresses found only whole.
#include <gtest/gtest.h>

#include <QDir>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTemporaryDir>

#include "connection/TavrendProcess.h"
#include "connection/Wait.h"
#include "contacts/BuddyList.h"
#include "contacts/MailText.h"
#include "contacts/Mailbox.h"
#include "contacts/MemberSearch.h"
#include "contacts/Profiles.h"
#include "contacts/ui/ChatSearch.h"
#include "rooms/RoomClient.h"

namespace tavren {
namespace {

using test::RoomClient;
using test::waitUntil;

const QStringList kFastPings = {QStringLiteral("--ping-interval"), QStringLiteral("0.2")};

class MailSearchProfileIntegrationTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(root.isValid());
        server = std::make_unique<test::TavrendProcess>(
            QDir(root.path()).filePath(QStringLiteral("tavrend.db")));
        for (const char* name : {"alice", "bob", "carol", "alfred"}) {
            ASSERT_TRUE(server->addAccount(QString::fromLatin1(name), QStringLiteral("secret")));
        }
        // The clients under test give up after two seconds without a ping.
        ASSERT_TRUE(server->start(kFastPings));
    }

    void logIn(RoomClient& client, const char* name) {
        client.logIn(server->port(), QString::fromLatin1(name), QStringLiteral("secret"));
        ASSERT_TRUE(client.waitOnline()) << server->log().toStdString();
    }

    static bool waitForMail(RoomClient& client, int count) {
        return waitUntil([&] { return client.session->mailbox().count() == count; });
    }

    QTemporaryDir root;
    std::unique_ptr<test::TavrendProcess> server;
};

TEST_F(MailSearchProfileIntegrationTest, MailReachesMembersOnlineAndOfflineAndDeletesLast) {
    RoomClient alice;
    RoomClient bob;
    logIn(alice, "alice");
    logIn(bob, "bob");
    Mailbox& aliceBox = alice.session->mailbox();
    Mailbox& bobBox = bob.session->mailbox();
    QSignalSpy aliceSent(&aliceBox, &Mailbox::sent);
    QSignalSpy bobNews(&bobBox, &Mailbox::newMail);

    // Two addressees with a comma and a blank; Carol is offline.
    const QString typed = QStringLiteral("Friday at eight?\nBring the cards: all of them.");
    ASSERT_EQ(aliceBox.send(QStringLiteral("bob, carol"), QStringLiteral("Plans"), typed),
              Mailbox::SendResult::Sent);
    ASSERT_TRUE(waitUntil([&] { return aliceSent.count() == 1; }));
    EXPECT_EQ(aliceSent[0][0].toStringList(),
              (QStringList{QStringLiteral("bob"), QStringLiteral("carol")}));

    // Bob is online: told at once, and his inbox has it.
    ASSERT_TRUE(waitForMail(bob, 1)) << server->log().toStdString();
    ASSERT_EQ(bobNews.count(), 1);
    EXPECT_EQ(bobNews[0][0].toString(), QStringLiteral("alice"));
    const MailRow mail = bobBox.rows()[0];
    EXPECT_EQ(mail.sender, QStringLiteral("alice"));
    EXPECT_EQ(mail.subject, QStringLiteral("Plans"));
    EXPECT_EQ(mail.body, QStringLiteral("Friday at eight?<br>Bring the cards: all of them."));
    EXPECT_EQ(MailText::bodyForEditing(mail.body), typed);
    EXPECT_TRUE(mail.sentTime.contains(QLatin1Char(':')) &&
                mail.sentTime.endsWith(QLatin1Char('M')))
        << mail.sentTime.toStdString();

    // Asking again lists it once.
    bobBox.refresh();
    test::runEventsFor(300);
    EXPECT_EQ(bobBox.count(), 1);

    // Carol finds it at her login.
    RoomClient carol;
    logIn(carol, "carol");
    ASSERT_TRUE(waitForMail(carol, 1));
    EXPECT_EQ(carol.session->mailbox().rows()[0].body, mail.body);

    // Bob replies; an unknown addressee is reported and the others still get it.
    QSignalSpy bobRefused(&bobBox, &Mailbox::refused);
    ASSERT_EQ(bobBox.send(mail.sender + QStringLiteral(", nobody"),
                          MailText::replySubject(mail.subject), QStringLiteral("Yes!")),
              Mailbox::SendResult::Sent);
    ASSERT_TRUE(waitForMail(alice, 1));
    EXPECT_EQ(aliceBox.rows()[0].subject, QStringLiteral("Re: Plans"));
    EXPECT_EQ(aliceBox.rows()[0].sender, QStringLiteral("bob"));
    ASSERT_TRUE(waitUntil([&] { return bobRefused.count() == 1; }));
    EXPECT_EQ(bobRefused[0][0].toString(),
              QStringLiteral("Your message was not delivered to nobody: no such member."));

    // Bob keeps one of two mails; the deleted one stays deleted after the server restarts.
    ASSERT_EQ(aliceBox.send(QStringLiteral("bob"), QStringLiteral("Second"), QStringLiteral("x")),
              Mailbox::SendResult::Sent);
    ASSERT_TRUE(waitForMail(bob, 2));
    EXPECT_EQ(bobBox.rows()[0].subject, QStringLiteral("Second"));
    bobBox.remove({1});
    ASSERT_EQ(bobBox.count(), 1);
    test::runEventsFor(300);  // the delete reaches the server
    EXPECT_EQ(bobBox.count(), 1);

    // Only Bob comes back after the restart (a server may keep several logins from one address
    // waiting; this test is not about that).
    alice.session->server().login().logOff();
    carol.session->server().login().logOff();
    const quint16 port = server->port();
    server->stop();
    ASSERT_TRUE(waitUntil([&] { return !bob.session->server().online(); }));
    EXPECT_EQ(bobBox.count(), 0);
    ASSERT_TRUE(server->start(kFastPings, port));
    ASSERT_TRUE(bob.waitOnline()) << server->log().toStdString();
    ASSERT_TRUE(waitForMail(bob, 1));
    test::runEventsFor(300);
    ASSERT_EQ(bobBox.count(), 1);
    EXPECT_EQ(bobBox.rows()[0].subject, QStringLiteral("Second"));
}

TEST_F(MailSearchProfileIntegrationTest, ProfilesAndTheSearchThroughTheRealServer) {
    RoomClient alice;
    RoomClient bob;
    logIn(alice, "alice");
    logIn(bob, "bob");

    // A page of exactly 10000 characters, holding ":", is kept whole; one more is refused.
    QString page = QStringLiteral("<b>Times:</b> 10:30, 12:45<br>");
    page += QString(Profiles::kMaxLength - page.size(), QLatin1Char('z'));
    ASSERT_EQ(page.size(), 10000);
    EXPECT_FALSE(alice.session->profiles().update(page + QLatin1Char('z')));
    ASSERT_TRUE(alice.session->profiles().update(page));
    // Bob's request travels on another connection: wait until Alice's own view shows the page
    // kept, so that his cannot overtake her update.
    QSignalSpy own(&alice.session->profiles(), &Profiles::profileArrived);
    ASSERT_TRUE(alice.session->profiles().view(QStringLiteral("alice")));
    ASSERT_TRUE(waitUntil([&] { return own.count() == 1; }));
    ASSERT_EQ(own[0][1].toString(), page);
    QSignalSpy arrived(&bob.session->profiles(), &Profiles::profileArrived);
    ASSERT_TRUE(bob.session->profiles().view(QStringLiteral("ALICE")));
    ASSERT_TRUE(waitUntil([&] { return arrived.count() == 1; }));
    EXPECT_EQ(arrived[0][0].toString(), QStringLiteral("alice"));
    EXPECT_EQ(arrived[0][1].toString(), page);

    // A member without a page gets the server's, with the name to click.
    ASSERT_TRUE(bob.session->profiles().view(QStringLiteral("carol")));
    ASSERT_TRUE(waitUntil([&] { return arrived.count() == 2; }));
    EXPECT_TRUE(arrived[1][1].toString().contains(QStringLiteral("id='nick'")));

    // The search window: a name's start finds both, and one is added as a buddy.
    ChatSearch window(*bob.session);
    MemberSearch& search = bob.session->memberSearch();
    QSignalSpy finished(&search, &MemberSearch::finished);
    window.text().setText(QStringLiteral("AL"));
    window.search();
    ASSERT_TRUE(waitUntil([&] { return finished.count() == 1; }));
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Tavren Member Search. (Done. 2 Results.. )"));
    ASSERT_EQ(search.results().size(), 2);
    EXPECT_EQ(search.results()[0][MemberSearch::Name], QStringLiteral("alfred"));
    EXPECT_EQ(search.results()[1][MemberSearch::Name], QStringLiteral("alice"));
    EXPECT_EQ(search.results()[1][MemberSearch::Status], QStringLiteral("Online"));
    EXPECT_EQ(search.results()[1][MemberSearch::Profile], QStringLiteral("Yes"));
    bob.session->buddies().addBuddy(search.results()[1][MemberSearch::Name]);
    ASSERT_TRUE(
        waitUntil([&] { return bob.session->buddies().contains(QStringLiteral("alice")); }));

    // Nothing found: the done caption says 0.
    window.text().setText(QStringLiteral("zzz"));
    window.search();
    ASSERT_TRUE(waitUntil([&] { return finished.count() == 2; }));
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Tavren Member Search. (Done. 0 Results.. )"));

    // E-mail addresses are found whole, never by their start.
    QSignalSpy email(&alice.session->server().accountRequests(), &AccountRequests::emailReceived);
    ASSERT_TRUE(
        alice.session->server().accountRequests().changeEmail(QStringLiteral("alice@example.org")));
    ASSERT_TRUE(alice.session->server().accountRequests().askEmail());
    ASSERT_TRUE(waitUntil([&] { return email.count() == 1; }));
    ASSERT_EQ(email[0][0].toString(), QStringLiteral("alice@example.org"));
    for (const char* part : {"alice@example", "alice@", "a"}) {
        ASSERT_TRUE(search.search(QStringLiteral("Email"), QString::fromLatin1(part)));
        const int before = finished.count();
        ASSERT_TRUE(waitUntil([&] { return finished.count() == before + 1; }));
        EXPECT_TRUE(search.results().isEmpty()) << part;
    }
    ASSERT_TRUE(search.search(QStringLiteral("Email"), QStringLiteral("Alice@Example.org")));
    const int before = finished.count();
    ASSERT_TRUE(waitUntil([&] { return finished.count() == before + 1; }));
    ASSERT_EQ(search.results().size(), 1);
    EXPECT_EQ(search.results()[0][MemberSearch::Name], QStringLiteral("alice"));
    for (const QString& field : search.results()[0]) {
        EXPECT_FALSE(field.contains(QLatin1Char('@'))) << field.toStdString();
    }
}

}  // namespace
}  // namespace tavren
