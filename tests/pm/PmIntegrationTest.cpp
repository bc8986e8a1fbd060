#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include "connection/TavrendProcess.h"
#include "connection/Wait.h"
#include "pm/PrivateChats.h"
#include "rooms/RoomClient.h"

namespace tavren {
namespace {

using test::RoomClient;
using test::waitUntil;

// One whole client and every line that reached one of its conversation panes.
class PmClient : public RoomClient {
  public:
    PmClient() {
        QObject::connect(&chats(), &PrivateChats::lineAdded, session.get(),
                         [this](int index, const QString& html) {
                             pmLines.push_back({index, html});
                         });
    }

    PrivateChats& chats() { return session->privateChats(); }

    QStringList linesWith(const QString& user) {
        QStringList found;
        const int position = chats().positionOf(user);
        if (position < 0) {
            return found;
        }
        const int index = chats().conversation(position).index;
        for (const auto& [lineIndex, html] : pmLines) {
            if (lineIndex == index) {
                found << html;
            }
        }
        return found;
    }

    int countWith(const QString& user, const QString& text) {
        return static_cast<int>(linesWith(user).filter(text).size());
    }

    bool waitForLineWith(const QString& user, const QString& text) {
        return waitUntil([&] { return countWith(user, text) > 0; });
    }

    void send(const QString& user, const QString& text) {
        chats().submit(chats().openConversation(user), text);
    }

    std::vector<std::pair<int, QString>> pmLines;
};

class PmIntegrationTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(root.isValid());
        server = std::make_unique<test::TavrendProcess>(
            QDir(root.path()).filePath(QStringLiteral("tavrend.db")));
        for (const char* name : {"alice", "bob", "carol"}) {
            ASSERT_TRUE(server->addAccount(QString::fromLatin1(name), QStringLiteral("secret")));
        }
        ASSERT_TRUE(server->start({QStringLiteral("--ping-interval"), QStringLiteral("0.2")}));
    }

    void logIn(PmClient& client, const char* name) {
        client.logIn(server->port(), QString::fromLatin1(name), QStringLiteral("secret"));
        ASSERT_TRUE(client.waitOnline()) << server->log().toStdString();
    }

    QTemporaryDir root;
    std::unique_ptr<test::TavrendProcess> server;
};

// Two members write to each other: the message opens the other's conversation, arrives as
// typed (smiley codes, replacements, a colon in the text), and typing status reaches the
// other side's label. Writing to a member who is offline or does not exist gets the server's
// notice in that conversation; an ignored member is not heard.
TEST_F(PmIntegrationTest, TwoMembersWriteToEachOtherAndTheServerSaysWhatCouldNotGo) {
    PmClient alice;
    PmClient bob;
    logIn(alice, "alice");
    logIn(bob, "bob");
    const QString aliceName = QStringLiteral("alice");
    const QString bobName = QStringLiteral("bob");

    alice.send(QStringLiteral("BOB"), QStringLiteral("hi ;5 &lt;b&gt;bold&lt;/b&gt;: &#ip"));
    ASSERT_TRUE(bob.waitForLineWith(aliceName, QStringLiteral(">alice:<")))
        << server->log().toStdString();
    const QString got = bob.linesWith(aliceName).filter(QStringLiteral(">alice:<")).first();
    EXPECT_TRUE(got.contains(QStringLiteral("105.gif")));
    EXPECT_TRUE(got.contains(QStringLiteral("<b>bold</b>: <i>IP Address</i>")));
    EXPECT_EQ(alice.countWith(bobName, QStringLiteral(">alice:<")), 1);

    // Bob's typing shows on Alice's side; only changes travel.
    const int atBob = bob.chats().positionOf(aliceName);
    bob.chats().noteEdit(atBob, PrivateChats::Edit::Grew, true);
    const int atAlice = alice.chats().positionOf(QStringLiteral("BOB"));
    ASSERT_TRUE(waitUntil(
        [&] { return alice.chats().conversation(atAlice).peerTyping == TypingStatus::Typing; }));
    bob.chats().noteEdit(atBob, PrivateChats::Edit::Shrank, false);
    ASSERT_TRUE(waitUntil(
        [&] { return alice.chats().conversation(atAlice).peerTyping == TypingStatus::Idle; }));
    bob.send(aliceName, QStringLiteral("two\nlines"));
    EXPECT_TRUE(alice.waitForLineWith(QStringLiteral("BOB"), QStringLiteral("two<br>lines")));

    alice.send(QStringLiteral("carol"), QStringLiteral("are you there?"));
    EXPECT_TRUE(
        alice.waitForLineWith(QStringLiteral("carol"),
                              QStringLiteral("carol is offline; your message was not delivered.")));
    alice.send(QStringLiteral("nobody"), QStringLiteral("hello?"));
    EXPECT_TRUE(alice.waitForLineWith(QStringLiteral("nobody"),
                                      QStringLiteral("There is no member called nobody.")));

    bob.chats().ignoreUser(bob.chats().positionOf(aliceName));
    alice.send(bobName, QStringLiteral("you cannot hear me"));
    alice.send(QStringLiteral("carol"), QStringLiteral("marker"));
    ASSERT_TRUE(alice.waitForLineWith(QStringLiteral("carol"), QStringLiteral("marker")));
    test::runEventsFor(300);
    EXPECT_EQ(bob.countWith(aliceName, QStringLiteral("you cannot hear me")), 0);
}

// Two away members: each client answers the other's first message once, and neither answers
// the other's answer.
TEST_F(PmIntegrationTest, AwayMembersAnswerOnceAndNeverEachOthersAnswers) {
    PmClient alice;
    PmClient bob;
    logIn(alice, "alice");
    logIn(bob, "bob");
    const QString aliceName = QStringLiteral("alice");
    const QString bobName = QStringLiteral("bob");

    alice.send(bobName, QStringLiteral("/away out for lunch"));
    bob.send(aliceName, QStringLiteral("/AWAY gone fishing"));
    ASSERT_TRUE(waitUntil(
        [&] { return alice.session->awayStatus().away() && bob.session->awayStatus().away(); }));

    alice.send(bobName, QStringLiteral("first"));
    alice.send(bobName, QStringLiteral("second"));
    ASSERT_TRUE(alice.waitForLineWith(bobName, QStringLiteral("[Auto-Reply] gone fishing")));
    ASSERT_TRUE(bob.waitForLineWith(aliceName, QStringLiteral("second")));
    // Bob's own answer went once into his pane; Alice's client let his answer be.
    alice.send(QStringLiteral("carol"), QStringLiteral("marker"));
    ASSERT_TRUE(alice.waitForLineWith(QStringLiteral("carol"), QStringLiteral("marker")));
    test::runEventsFor(300);
    EXPECT_EQ(alice.countWith(bobName, QStringLiteral("[Auto-Reply] gone fishing")), 1);
    EXPECT_EQ(bob.countWith(aliceName, QStringLiteral("[Auto-Reply] gone fishing")), 1);
    EXPECT_EQ(bob.countWith(aliceName, QStringLiteral("[Auto-Reply] out for lunch")), 0);
    EXPECT_EQ(alice.countWith(bobName, QStringLiteral("[Auto-Reply] out for lunch")), 0);

    // Back and away again: a new period, one more answer.
    bob.send(aliceName, QStringLiteral("/back"));
    ASSERT_TRUE(waitUntil([&] { return !bob.session->awayStatus().away(); }));
    bob.send(aliceName, QStringLiteral("/away again"));
    ASSERT_TRUE(waitUntil([&] { return bob.session->awayStatus().away(); }));
    alice.send(bobName, QStringLiteral("third"));
    EXPECT_TRUE(alice.waitForLineWith(bobName, QStringLiteral("[Auto-Reply] again")));
}

}  // namespace
}  // namespace tavren
