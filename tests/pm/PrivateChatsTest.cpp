#include <gtest/gtest.h>

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>

#include "connection/FakePeer.h"
#include "connection/Wait.h"
#include "core/ClientSession.h"
#include "core/WireText.h"
#include "core/protocol/Catalogue.h"
#include "pm/BuddyDirectory.h"
#include "pm/PrivateChats.h"
#include "support/ScriptedPrompter.h"

namespace tavren {
namespace {

namespace in = protocol::server_to_client;
namespace out = protocol::client_to_server;

// One client fed frames as if the server had sent them. Tests that look at what the client
// sends log it in to a scripted peer first.
class PrivateChatsTest : public ::testing::Test {
  protected:
    PrivateChatsTest()
        : session(dir.path(), dir.filePath(QStringLiteral("settings.ini")),
                  ConnectionOptions::deployment(), prompter) {
        QObject::connect(&chats(), &PrivateChats::lineAdded,
                         [this](int index, const QString& html) {
                             lines.push_back({index, html});
                         });
    }

    PrivateChats& chats() { return session.privateChats(); }

    void deliver(protocol::CodePair code, const QString& payload) {
        session.server().dispatcher().DispatchServerFrame(
            protocol::Frame{code, WireText::toWire(payload)});
    }

    // Lines that reached the pane of the conversation with `user`.
    QStringList linesWith(const QString& user) {
        QStringList found;
        const int position = chats().positionOf(user);
        if (position < 0) {
            return found;
        }
        const int index = chats().conversation(position).index;
        for (const auto& [lineIndex, html] : lines) {
            if (lineIndex == index) {
                found << html;
            }
        }
        return found;
    }

    void logInAsMe() {
        peer.setResponder(&test::FakePeer::answerLoginWithoutPings);
        SettingsValues values = session.settings().values();
        values.serverHost = QStringLiteral("127.0.0.1");
        values.serverPort = QString::number(peer.port());
        values.tls = false;  // plain: encryption is tested on its own
        session.settings().setValues(values);
        SavedAccounts& accounts = session.server().accounts();
        session.server().login().select(accounts.add(QStringLiteral("me"), QStringLiteral("pw")));
        session.server().login().clickLoginButton();
        ASSERT_TRUE(test::waitUntil([this] { return session.server().online(); }));
    }

    // The payloads of `code` the peer has received once everything sent so far has arrived.
    QStringList sent(protocol::CodePair code) {
        const QString marker = QStringLiteral("sync%1").arg(++syncs);
        session.server().link().SendPacket(marker, out::kPong);
        EXPECT_TRUE(test::waitUntil([&] {
            const auto& frames = peer.frames();
            return !frames.empty() && frames.back().code == out::kPong &&
                   WireText::fromWire(frames.back().payload) == marker;
        }));
        QStringList payloads;
        for (const protocol::Frame& frame : peer.frames()) {
            if (frame.code == code) {
                payloads << WireText::fromWire(frame.payload);
            }
        }
        return payloads;
    }

    QTemporaryDir dir;
    test::ScriptedPrompter prompter;
    test::FakePeer peer;
    ClientSession session;
    std::vector<std::pair<int, QString>> lines;
    int syncs = 0;
};

TEST_F(PrivateChatsTest, MessagesOpenConversationsAndLandInTheirOwnTab) {
    QSignalSpy arrived(&chats(), &PrivateChats::messageArrived);
    QSignalSpy opened(&chats(), &PrivateChats::conversationOpened);
    deliver(in::kPrivateMessage, QStringLiteral("alice:hi ;5 there: you"));
    ASSERT_EQ(chats().count(), 1);
    EXPECT_EQ(chats().selected(), 0);
    EXPECT_EQ(chats().conversation(0).index, 0);
    ASSERT_EQ(opened.count(), 1);
    EXPECT_FALSE(opened.at(0).at(1).toBool());
    ASSERT_EQ(linesWith(QStringLiteral("alice")).size(), 1);
    const QString first = linesWith(QStringLiteral("alice"))[0];
    EXPECT_TRUE(first.contains(QStringLiteral(">alice:<")));
    EXPECT_TRUE(first.contains(QStringLiteral("105.gif")));
    EXPECT_TRUE(first.contains(QStringLiteral("there: you")));
    // Others' lines in color5 / color6 when they carry no format.
    EXPECT_TRUE(first.contains(QStringLiteral("<font color='8080FF' face='Arial' size='2'>")));
    ASSERT_EQ(arrived.count(), 1);
    EXPECT_EQ(arrived.at(0).at(0).toString(), QStringLiteral("alice"));
    EXPECT_EQ(arrived.at(0).at(1).toString(), QStringLiteral("hi ;5 there: you"));
    EXPECT_TRUE(arrived.at(0).at(2).toBool());

    // A second sender gets a tab of its own in the background: the member stays where they are.
    deliver(in::kPrivateMessage,
            QStringLiteral("bob\u000116711680;255;True;True;False;3;Verdana:formatted"));
    ASSERT_EQ(chats().count(), 2);
    EXPECT_EQ(chats().selected(), 0);
    EXPECT_TRUE(chats().conversation(1).unread);
    const QString styled = linesWith(QStringLiteral("bob")).at(0);
    EXPECT_TRUE(styled.contains(QStringLiteral("<font color='0000FF' face='Arial' size='3'>")));
    EXPECT_TRUE(styled.contains(QStringLiteral("Verdana")));
    EXPECT_FALSE(styled.contains(QChar(1)));

    // With Bob's tab selected, Alice's message lands in hers, which is marked; the name keeps
    // the spelling the server sends last.
    chats().select(1);
    EXPECT_FALSE(chats().conversation(1).unread);
    QSignalSpy caption(&chats(), &PrivateChats::captionChanged);
    deliver(in::kPrivateMessage, QStringLiteral("ALICE:again"));
    EXPECT_EQ(chats().count(), 2);
    EXPECT_EQ(chats().selected(), 1);
    EXPECT_EQ(linesWith(QStringLiteral("alice")).size(), 2);
    EXPECT_EQ(linesWith(QStringLiteral("bob")).size(), 1);
    EXPECT_TRUE(chats().conversation(0).unread);
    EXPECT_EQ(chats().conversation(0).user, QStringLiteral("ALICE"));
    EXPECT_EQ(caption.count(), 1);
    EXPECT_FALSE(arrived.last().at(2).toBool());
}

TEST_F(PrivateChatsTest, IgnoredSendersDimmedMessagesAndBrokenPayloadsAreDropped) {
    session.ignoreList().add(QStringLiteral("Mallory"));
    deliver(in::kPrivateMessage, QStringLiteral("mallory:spam"));
    EXPECT_EQ(chats().count(), 0);
    for (const QString& broken :
         {QStringLiteral("nocolon"), QStringLiteral(":nobody"), QStringLiteral("two words:x"),
          QStringLiteral("\u0001fmt:x"), QString()}) {
        deliver(in::kPrivateMessage, broken);
        deliver(in::kPrivateNotice, broken);
        deliver(in::kTypingStatus, broken);
    }
    EXPECT_EQ(chats().count(), 0);
    EXPECT_TRUE(lines.empty());

    deliver(in::kPrivateMessage, QStringLiteral("alice:first"));
    SettingsValues values = session.settings().values();
    values.ignorePms = true;
    session.settings().setValues(values);
    // "Dim Private Messages": open conversations still get theirs, nobody else opens one.
    deliver(in::kPrivateMessage, QStringLiteral("carol:knock knock"));
    deliver(in::kPrivateMessage, QStringLiteral("Alice:second"));
    EXPECT_EQ(chats().count(), 1);
    EXPECT_EQ(linesWith(QStringLiteral("alice")).size(), 2);
    // An ignored member stays unheard in an open conversation too, typing included.
    session.ignoreList().add(QStringLiteral("ALICE"));
    deliver(in::kPrivateMessage, QStringLiteral("alice:third"));
    deliver(in::kTypingStatus, QStringLiteral("alice:1"));
    EXPECT_EQ(linesWith(QStringLiteral("alice")).size(), 2);
    EXPECT_EQ(chats().conversation(0).peerTyping, TypingStatus::Idle);
}

TEST_F(PrivateChatsTest, PeerTypingNoticesAndPresence) {
    deliver(in::kPrivateMessage, QStringLiteral("bob:hi"));
    QSignalSpy typing(&chats(), &PrivateChats::peerTypingChanged);
    deliver(in::kTypingStatus, QStringLiteral("BOB:1"));
    EXPECT_EQ(chats().conversation(0).peerTyping, TypingStatus::Typing);
    deliver(in::kTypingStatus, QStringLiteral("bob:1"));
    EXPECT_EQ(typing.count(), 1);
    deliver(in::kTypingStatus, QStringLiteral("bob:4"));
    EXPECT_EQ(chats().conversation(0).peerTyping, TypingStatus::EnteredText);
    for (const char* bad : {"bob:0", "bob:5", "bob:12", "bob:", "bob:2:x", "bob: 2"}) {
        deliver(in::kTypingStatus, QString::fromLatin1(bad));
    }
    EXPECT_EQ(chats().conversation(0).peerTyping, TypingStatus::EnteredText);
    EXPECT_EQ(typing.count(), 2);
    // Typing alone opens no conversation.
    deliver(in::kTypingStatus, QStringLiteral("carol:1"));
    EXPECT_EQ(chats().count(), 1);

    // A notice about a member opens that member's conversation, labelled as a notice.
    deliver(in::kPrivateNotice,
            QStringLiteral("carol:carol is offline; your message was not delivered."));
    ASSERT_EQ(chats().count(), 2);
    const QStringList notice = linesWith(QStringLiteral("carol"));
    ASSERT_EQ(notice.size(), 1);
    EXPECT_TRUE(notice[0].contains(QStringLiteral(">Notice:<")));
    EXPECT_TRUE(
        notice[0].contains(QStringLiteral("carol is offline; your message was not delivered.")));
    EXPECT_TRUE(chats().conversation(1).unread);

    chats().showPresenceNotice(QStringLiteral("BOB"), true);
    chats().showPresenceNotice(QStringLiteral("bob"), false);
    chats().showPresenceNotice(QStringLiteral("dave"), true);
    const QStringList presence = linesWith(QStringLiteral("bob"));
    ASSERT_EQ(presence.size(), 3);
    EXPECT_TRUE(presence[1].contains(QStringLiteral(">bob<")));
    EXPECT_TRUE(presence[1].contains(
        QStringLiteral("is now (<font color='#008000'><b>Online</b></font>)..")));
    EXPECT_TRUE(presence[2].contains(QStringLiteral("<b>Offline</b></font>)..")));
    EXPECT_EQ(chats().count(), 2);
}

TEST_F(PrivateChatsTest, IndexesAreReusedAndTheHundredAndFirstConversationIsRefused) {
    for (int i = 0; i < PrivateChats::kMaxConversations; ++i) {
        ASSERT_EQ(chats().openConversation(QStringLiteral("user%1").arg(i)), i);
        EXPECT_EQ(chats().conversation(i).index, i);
    }
    EXPECT_EQ(chats().selected(), 99);
    // Opening an open one finds it.
    EXPECT_EQ(chats().openConversation(QStringLiteral("USER7")), 7);
    EXPECT_EQ(chats().selected(), 7);

    EXPECT_EQ(chats().openConversation(QStringLiteral("extra")), -1);
    ASSERT_EQ(prompter.asked.size(), 1u);
    EXPECT_TRUE(prompter.asked[0].text.contains(QStringLiteral("Close one to talk to extra.")));
    deliver(in::kPrivateMessage, QStringLiteral("stranger:hello?"));
    EXPECT_EQ(chats().count(), PrivateChats::kMaxConversations);
    ASSERT_EQ(linesWith(QStringLiteral("user7")).size(), 1);
    EXPECT_TRUE(linesWith(QStringLiteral("user7"))[0].contains(
        QStringLiteral("stranger sent you a private message, but 100 private conversations are "
                       "open already.")));

    QSignalSpy closed(&chats(), &PrivateChats::conversationClosed);
    chats().closeConversation(17);
    chats().closeConversation(5);
    ASSERT_EQ(closed.count(), 2);
    EXPECT_EQ(closed.at(0).at(1).toInt(), 17);
    // The selected conversation moved down one place with the tabs before it.
    EXPECT_EQ(chats().selected(), 6);
    EXPECT_EQ(chats().conversation(6).user, QStringLiteral("user7"));
    EXPECT_EQ(chats().conversation(chats().openConversation(QStringLiteral("new1"))).index, 5);
    EXPECT_EQ(chats().conversation(chats().openConversation(QStringLiteral("new2"))).index, 17);
    EXPECT_EQ(chats().positionOfIndex(17), 99);

    // Closing the selected last tab selects the one before it.
    chats().closeConversation(99);
    EXPECT_EQ(chats().selected(), 98);
    chats().closeAll();
    EXPECT_EQ(chats().count(), 0);
    EXPECT_EQ(chats().selected(), -1);
    EXPECT_FALSE(chats().typingTimer().isActive());
    EXPECT_EQ(chats().conversation(chats().openConversation(QStringLiteral("again"))).index, 0);
    EXPECT_TRUE(chats().typingTimer().isActive());
    EXPECT_EQ(chats().openConversation(QStringLiteral("not a name")), -1);
}

class FakeBuddies : public BuddyDirectory {
  public:
    bool contains(const QString& name) const override {
        return names.contains(name, Qt::CaseInsensitive);
    }
    void addBuddy(const QString& name) override { added << name; }
    QStringList names;
    QStringList added;
};

TEST_F(PrivateChatsTest, IgnoringInvitingAndBuddiesFromAConversation) {
    session.settings().setNickname(QStringLiteral("me"));
    const int self = chats().openConversation(QStringLiteral("Me"));
    const int bob = chats().openConversation(QStringLiteral("bob"));

    EXPECT_EQ(chats().ignoreUser(self), PrivateChats::IgnoreResult::Self);
    ASSERT_EQ(prompter.asked.size(), 1u);
    EXPECT_EQ(prompter.asked[0].text, QStringLiteral("You can't ignore yourself. (Can You?...)"));
    EXPECT_EQ(prompter.asked[0].title, QStringLiteral("Error!"));
    EXPECT_TRUE(session.ignoreList().names().isEmpty());
    EXPECT_FALSE(QFile::exists(session.ignoreList().filePath()));

    EXPECT_EQ(chats().ignoreUser(bob), PrivateChats::IgnoreResult::Ignored);
    EXPECT_TRUE(session.ignoreList().contains(QStringLiteral("BOB")));
    EXPECT_TRUE(QFile::exists(session.ignoreList().filePath()));
    EXPECT_TRUE(
        linesWith(QStringLiteral("bob")).last().contains(QStringLiteral("Ignoring User...")));

    chats().inviteToChannel(self, QString());
    chats().inviteToChannel(bob, QString());
    deliver(in::kJoinedRoom, QStringLiteral("General"));
    deliver(in::kJoinedRoom, QStringLiteral("Poker Lounge"));
    EXPECT_EQ(chats().channels(),
              QStringList({QStringLiteral("General"), QStringLiteral("Poker Lounge")}));
    chats().inviteToChannel(bob, QStringLiteral("general"));
    chats().inviteToChannel(bob, QStringLiteral("Gone Away"));
    ASSERT_EQ(prompter.asked.size(), 5u);
    EXPECT_EQ(prompter.asked[1].text, QStringLiteral("You cannot invite yourself.."));
    EXPECT_EQ(prompter.asked[1].title, QStringLiteral("Error: Lazyness.."));
    EXPECT_EQ(prompter.asked[2].text, QStringLiteral("No active channels present..."));
    EXPECT_EQ(prompter.asked[2].title, QStringLiteral("Error.."));
    EXPECT_EQ(prompter.asked[3].text,
              QStringLiteral("You have invited user bob to join channel General."));
    EXPECT_EQ(prompter.asked[3].title, QStringLiteral("Invite Success!"));
    // A channel left in the meantime: the room window's current one.
    EXPECT_EQ(prompter.asked[4].text,
              QStringLiteral("You have invited user bob to join channel Poker Lounge."));

    FakeBuddies buddies;
    buddies.names << QStringLiteral("BOB");
    chats().setBuddyDirectory(&buddies);
    EXPECT_TRUE(chats().isBuddy(bob));
    EXPECT_FALSE(chats().isBuddy(self));
    chats().addBuddy(bob);
    chats().addBuddy(self);
    EXPECT_EQ(buddies.added, QStringList(QStringLiteral("Me")));
    chats().setBuddyDirectory(nullptr);
}

TEST_F(PrivateChatsTest, OfflineTheClientsOwnCommandsWorkAndMessagesStayInTheBox) {
    const int alice = chats().openConversation(QStringLiteral("alice"));
    deliver(in::kPrivateMessage, QStringLiteral("alice:something to clear"));
    QSignalSpy cleared(&chats(), &PrivateChats::paneCleared);
    EXPECT_TRUE(chats().submit(alice, QStringLiteral("  /Clear ")));
    EXPECT_EQ(cleared.count(), 1);
    const auto before = lines.size();
    EXPECT_FALSE(chats().submit(alice, QStringLiteral("hello")));
    ASSERT_EQ(lines.size(), before + 1);
    EXPECT_TRUE(lines.back().second.contains(QStringLiteral("You are not connected")));
    EXPECT_TRUE(chats().submit(alice, QStringLiteral("   ")));
    EXPECT_EQ(lines.size(), before + 1);
}

TEST_F(PrivateChatsTest, SendingInTheOrderOfTheCommandsWithTheReplacements) {
    logInAsMe();
    const int alice = chats().openConversation(QStringLiteral("alice"));
    QSignalSpy cleared(&chats(), &PrivateChats::paneCleared);
    EXPECT_TRUE(chats().submit(alice, QStringLiteral("/CLEAR")));
    EXPECT_TRUE(chats().submit(alice, QStringLiteral("/Back")));
    EXPECT_TRUE(chats().submit(alice, QStringLiteral("/AWAYgone: fishing")));
    EXPECT_TRUE(chats().submit(alice, QStringLiteral(" hi &#ip &lt;b&gt;;5&lt;/b&gt; ")));
    EXPECT_TRUE(chats().submit(alice, QStringLiteral("two\nlines")));
    EXPECT_EQ(cleared.count(), 1);
    EXPECT_EQ(sent(out::kAwayStatus),
              QStringList({QStringLiteral("/back"), QStringLiteral("/AWAYgone: fishing")}));
    // The codes go out as typed; only the own pane shows the pictures.
    EXPECT_EQ(sent(out::kPrivateMessage),
              QStringList({QStringLiteral("alice:hi <i>IP Address</i> <b>;5</b>"),
                           QStringLiteral("alice:two\r\nlines")}));
    const QStringList own = linesWith(QStringLiteral("alice"));
    ASSERT_EQ(own.size(), 2);
    EXPECT_TRUE(
        own[0].contains(QStringLiteral("<font color='808080' face='Arial' size='2'><b>me:")));
    EXPECT_TRUE(own[0].contains(QStringLiteral("<i>IP Address</i> <b><img")));
    EXPECT_TRUE(own[0].contains(QStringLiteral("105.gif")));
    EXPECT_TRUE(own[1].contains(QStringLiteral("two<br>lines")));

    // Too long for the server: not shown, not sent, left in the box.
    EXPECT_FALSE(
        chats().submit(alice, QString(PrivateChats::kMaxMessageBytes + 1, QLatin1Char('x'))));
    EXPECT_EQ(sent(out::kPrivateMessage).size(), 2);
    EXPECT_TRUE(linesWith(QStringLiteral("alice")).last().contains(QStringLiteral("at most 2048")));
}

TEST_F(PrivateChatsTest, TypingStatusGoesOutOnlyWhenItChangesAndNeverFillsTheFloodMeter) {
    logInAsMe();
    deliver(in::kJoinedRoom, QStringLiteral("General"));
    // A meter that does not drain while the test looks at it.
    deliver(in::kFloodMeters, QStringLiteral("1000;60000"));
    FloodMeter& meter = session.rooms().flooder();
    const int alice = chats().openConversation(QStringLiteral("alice"));
    const int filled = meter.value();

    QSignalSpy own(&chats(), &PrivateChats::ownTypingChanged);
    using Edit = PrivateChats::Edit;
    chats().noteEdit(alice, Edit::Grew, true);
    chats().noteEdit(alice, Edit::Grew, true);
    chats().noteEdit(alice, Edit::Grew, true);
    chats().noteEdit(alice, Edit::Shrank, true);
    // Edited since the last tick: still at it.
    chats().typingTick();
    EXPECT_EQ(chats().conversation(alice).ownTyping, TypingStatus::Deleting);
    chats().typingTick();
    EXPECT_EQ(chats().conversation(alice).ownTyping, TypingStatus::EnteredText);
    chats().typingTick();
    chats().noteEdit(alice, Edit::Shrank, false);
    chats().typingTick();
    chats().typingTick();
    EXPECT_EQ(own.count(), 4);
    EXPECT_EQ(meter.value(), filled);
    EXPECT_EQ(sent(out::kTypingStatus),
              QStringList({QStringLiteral("alice:1"), QStringLiteral("alice:2"),
                           QStringLiteral("alice:4"), QStringLiteral("alice:3")}));

    const int beforeMessage = meter.value();
    EXPECT_TRUE(chats().submit(alice, QStringLiteral("counted")));
    EXPECT_EQ(meter.value(), beforeMessage + 1);
}

TEST_F(PrivateChatsTest, AwayAnswersOncePerConversationAndPeriodAndNeverAnAnswer) {
    logInAsMe();
    deliver(in::kPrivateMessage, QStringLiteral("alice:before going away"));
    deliver(in::kAwayMenu, QStringLiteral("True;gone fishing"));
    deliver(in::kPrivateMessage, QStringLiteral("alice:are you there?"));
    deliver(in::kPrivateMessage, QStringLiteral("alice:hello??"));
    deliver(in::kPrivateMessage, QStringLiteral("bob:hi"));
    // Another away client's answer, and one's own message to oneself, get none.
    deliver(in::kPrivateMessage, QStringLiteral("carol:[Auto-Reply] out for lunch"));
    deliver(in::kPrivateMessage, QStringLiteral("me:note to self"));
    EXPECT_EQ(sent(out::kPrivateMessage),
              QStringList({QStringLiteral("alice:[Auto-Reply] gone fishing"),
                           QStringLiteral("bob:[Auto-Reply] gone fishing")}));
    // The answer shows in the member's own pane, so they see what was said for them.
    EXPECT_EQ(linesWith(QStringLiteral("alice")).filter(QStringLiteral("[Auto-Reply] gone")).size(),
              1);

    // Back, then away again: a new period, a new answer.
    deliver(in::kAwayMenu, QStringLiteral("False;"));
    deliver(in::kPrivateMessage, QStringLiteral("alice:back?"));
    deliver(in::kAwayMenu, QStringLiteral("True;"));
    deliver(in::kPrivateMessage, QStringLiteral("alice:and now?"));
    EXPECT_EQ(sent(out::kPrivateMessage).mid(2),
              QStringList(QStringLiteral("alice:[Auto-Reply] I'm away right now.")));
}

}  // namespace
}  // namespace tavren
