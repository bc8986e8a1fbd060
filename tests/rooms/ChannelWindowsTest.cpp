// The channel windows offscreen: the directory, the creation form, the invitation sender, the
// invitation and password prompts, the box that tells why one was removed, and the room window's
// moderation menus.
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeWidget>

#include "config/ColumnWidths.h"
#include "connection/FakePeer.h"
#include "connection/Wait.h"
#include "core/ClientSession.h"
#include "core/WireText.h"
#include "core/protocol/Catalogue.h"
#include "rooms/RoomCommandHost.h"
#include "rooms/RoomSession.h"
#include "rooms/ui/ChannelWindows.h"
#include "rooms/ui/ChatCreate.h"
#include "rooms/ui/ChatInvite.h"
#include "rooms/ui/ChatJoin.h"
#include "rooms/ui/ChatPassword.h"
#include "rooms/ui/ChatRoom.h"
#include "rooms/ui/ChatSendInvite.h"
#include "rooms/ui/RoomTab.h"
#include "support/ScriptedPrompter.h"

namespace tavren {
namespace {

namespace in = protocol::server_to_client;
namespace out = protocol::client_to_server;

// Counts what the room window asks the main window to open.
class CountingHost : public RoomCommandHost {
  public:
    void openSettings() override {}
    void openNicknameFormat() override {}
    void openAbout() override {}
    void closeRoomWindow() override {}
    void openChannelDirectory() override { ++directories; }
    void openChannelCreation() override { ++creations; }
    void openInviteSender() override { ++senders; }
    int directories = 0;
    int creations = 0;
    int senders = 0;
};

class ChannelWindowsTest : public ::testing::Test {
  protected:
    ChannelWindowsTest()
        : session(dir.path(), dir.filePath(QStringLiteral("settings.ini")),
                  ConnectionOptions::deployment(), prompter),
          windows(session, prompter, host) {}

    void deliver(protocol::CodePair code, const QString& payload) {
        session.server().dispatcher().DispatchServerFrame(
            protocol::Frame{code, WireText::toWire(payload)});
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
    CountingHost host;
    ChannelWindows windows;
    int syncs = 0;
};

TEST_F(ChannelWindowsTest, TheDirectoryListsJoinsOnlyWhatIsChosenAndKeepsItsColumnWidths) {
    logInAsMe();
    windows.openDirectory();
    ChatJoin* directory = windows.directoryWindow();
    ASSERT_NE(directory, nullptr);
    EXPECT_TRUE(directory->isVisible());
    EXPECT_EQ(sent(out::kAskChannelDirectory), QStringList(QStringLiteral("Get")));
    deliver(in::kChannelDirectory,
            QStringLiteral("Poker Lounge\u00015\u0001cards\u0001False\u0001True\u0002"
                           "General\u00010\u0001\u0001True\u0001False\u0002"));
    QTreeWidget& list = directory->list();
    ASSERT_EQ(list.topLevelItemCount(), 2);
    EXPECT_EQ(list.topLevelItem(0)->text(0), QStringLiteral("Poker Lounge"));
    EXPECT_EQ(list.topLevelItem(0)->text(1), QStringLiteral("005"));
    EXPECT_EQ(list.topLevelItem(0)->text(2), QStringLiteral("*User* Occupied"));
    EXPECT_EQ(list.topLevelItem(0)->text(3), QStringLiteral("cards"));
    EXPECT_EQ(list.topLevelItem(1)->text(1), QStringLiteral("00"));
    EXPECT_EQ(list.topLevelItem(1)->text(2), QStringLiteral("Public Empty"));

    directory->joinSelected();  // nothing chosen: nothing sent
    deliver(in::kJoinedRoom, QStringLiteral("General"));
    list.setCurrentItem(list.topLevelItem(1));
    directory->joinSelected();  // open already
    list.setCurrentItem(list.topLevelItem(0));
    directory->joinSelected();
    EXPECT_EQ(sent(out::kJoinRoom), QStringList(QStringLiteral("Poker Lounge")));

    list.setColumnWidth(3, 333);
    EXPECT_EQ(ColumnWidths::read(session.store(), ColumnWidths::Join, 3, 0), 333);
    EXPECT_EQ(session.store().value(QStringLiteral("General"), QStringLiteral("Joincolumn3")),
              QStringLiteral("333"));
    directory->findChild<QPushButton*>(QStringLiteral("XPButton3"))->click();
    EXPECT_EQ(host.creations, 1);
}

TEST_F(ChannelWindowsTest, TheCreationFormChecksThenShowsItsProgressSendsAndCloses) {
    logInAsMe();
    windows.openCreation();
    ChatCreate* form = windows.creationWindow();
    ASSERT_NE(form, nullptr);
    auto* name = form->findChild<QLineEdit*>(QStringLiteral("ChanName"));
    auto* topic = form->findChild<QLineEdit*>(QStringLiteral("ChanTopic"));
    auto* isPass = form->findChild<QCheckBox*>(QStringLiteral("IsPass"));
    auto* password = form->findChild<QLineEdit*>(QStringLiteral("ChanPass"));
    auto* bar = form->findChild<QProgressBar*>(QStringLiteral("ProgressBar1"));
    ASSERT_TRUE(name && topic && isPass && password && bar);
    EXPECT_FALSE(password->isEnabled());
    name->setText(QStringLiteral("Poker:"));
    isPass->setChecked(true);
    form->create();
    EXPECT_EQ(prompter.asked.back().text,
              QStringLiteral("Please enter a password or un-select the password option!"));
    password->setText(QStringLiteral("rose"));
    form->create();
    EXPECT_EQ(prompter.asked.back().text,
              QStringLiteral("Channel Name Can't Contain {:} or (;) Characters!"));
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(name->text(), QStringLiteral("Poker:")) << "the form keeps what was typed";
    EXPECT_FALSE(bar->isVisible());

    name->setText(QStringLiteral("Poker Lounge"));
    topic->setText(QStringLiteral("cards"));
    form->create();
    EXPECT_TRUE(bar->isVisible());
    ASSERT_TRUE(test::waitUntil([&] { return !form->isVisible(); }));
    EXPECT_EQ(sent(out::kCreateRoom), QStringList(QStringLiteral("Poker Lounge:rose:cards")));
    EXPECT_TRUE(name->text().isEmpty()) << "ready for the next channel";
}

TEST_F(ChannelWindowsTest, InvitationsPasswordQuestionsAndRemovalsOpenTheirWindows) {
    logInAsMe();
    // The invitation sender needs a channel to invite to.
    windows.openInviteSender();
    EXPECT_EQ(windows.inviteSender(), nullptr);
    EXPECT_EQ(prompter.asked.back().text, QStringLiteral("No active channels present..."));
    deliver(in::kJoinedRoom, QStringLiteral("General"));
    deliver(in::kJoinedRoom, QStringLiteral("Night Owls"));
    windows.openInviteSender(QStringLiteral("bob"));
    ChatSendInvite* sender = windows.inviteSender();
    ASSERT_NE(sender, nullptr);
    EXPECT_EQ(sender->channelChoice().count(), 2);
    EXPECT_EQ(sender->channelChoice().currentText(), QStringLiteral("Night Owls"));
    sender->accept();
    EXPECT_FALSE(sender->isVisible());
    EXPECT_EQ(prompter.asked.back().title, QStringLiteral("Invite Success!"));
    EXPECT_EQ(sent(out::kInviteToRoom), QStringList(QStringLiteral("bob;Night Owls")));

    // One prompt per invitation; the same one again comes forward; a few at most.
    deliver(in::kRoomInvitation, QStringLiteral("Invite: alice;Poker Lounge"));
    deliver(in::kRoomInvitation, QStringLiteral("Invite: ALICE;poker lounge"));
    ASSERT_EQ(windows.invitePrompts().size(), 1);
    ChatInvite* prompt = windows.invitePrompts().first();
    EXPECT_TRUE(prompt->text().startsWith(QStringLiteral("Invite: ")));
    for (int i = 0; i < 8; ++i) {
        deliver(in::kRoomInvitation, QStringLiteral("Invite: carol;Room Number %1").arg(i));
    }
    EXPECT_EQ(windows.invitePrompts().size(), ChannelWindows::kMaxInvitePrompts);
    prompt->accept();
    EXPECT_TRUE(test::waitUntil([&] { return windows.invitePrompts().size() == 4; }));

    // The password question opens the prompt, which joins with the password typed.
    deliver(in::kJoinedRoom, QStringLiteral("Secret Garden:This channel asks for a password."));
    ChatPassword* question = windows.passwordPrompt(QStringLiteral("secret garden"));
    ASSERT_NE(question, nullptr);
    EXPECT_EQ(question->sentence(), QStringLiteral("This channel asks for a password."));
    question->accept();  // empty: nothing sent, the prompt stays
    EXPECT_TRUE(question->isVisible());
    question->passwordField().setText(QStringLiteral("rose"));
    question->accept();
    deliver(in::kJoinedRoom, QStringLiteral("Secret Garden:The password was wrong. Try again."));
    question = windows.passwordPrompt(QStringLiteral("Secret Garden"));
    ASSERT_NE(question, nullptr);
    EXPECT_EQ(question->sentence(), QStringLiteral("The password was wrong. Try again."));
    EXPECT_TRUE(question->passwordField().text().isEmpty());
    EXPECT_EQ(sent(out::kJoinRoom),
              (QStringList{QStringLiteral("Poker Lounge"), QStringLiteral("Secret Garden:rose")}));

    deliver(in::kRemovedFromRoom, QStringLiteral("Night Owls:You were kicked by alice: spam"));
    EXPECT_EQ(prompter.asked.back().title, QStringLiteral("Removed from Night Owls"));
    EXPECT_EQ(prompter.asked.back().text,
              QStringLiteral("You have been removed from this channel...\n\nNight Owls\n"
                             "You were kicked by alice: spam"));
}

TEST_F(ChannelWindowsTest, TheRoomWindowOffersEveryModerationItemAndTheChannelWindows) {
    logInAsMe();
    ChatRoom room(session, host, prompter);
    deliver(in::kJoinedRoom, QStringLiteral("Night Owls"));
    deliver(in::kMemberList, QStringLiteral("Night Owls:@me;bob;"));
    for (const char* name :
         {"mlistban", "voter", "voteyes", "voteno", "findchat", "createroom", "inviteuser"}) {
        QAction* action = room.action(QLatin1String(name));
        ASSERT_NE(action, nullptr) << name;
        EXPECT_TRUE(action->isEnabled()) << name;
    }
    room.action(QStringLiteral("findchat"))->trigger();
    room.action(QStringLiteral("createroom"))->trigger();
    room.action(QStringLiteral("inviteuser"))->trigger();
    EXPECT_EQ(host.directories + host.creations + host.senders, 3);
    room.action(QStringLiteral("mlistban"))->trigger();
    room.action(QStringLiteral("voteyes"))->trigger();
    EXPECT_EQ(sent(out::kRoomLine), (QStringList{QStringLiteral("Night Owls:/ipbans"),
                                                 QStringLiteral("Night Owls:/yes")}));
    EXPECT_EQ(sent(out::kAskChannelDirectory), QStringList(QStringLiteral("Get")));

    // The member menu, read while it is open.
    QStringList items;
    QTimer::singleShot(0, [&] {
        if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
            for (const QAction* action : menu->actions()) {
                if (!action->isSeparator()) {
                    items << action->objectName();
                }
            }
            menu->close();
        }
    });
    emit room.tab(0)->memberMenuRequested(QStringLiteral("bob"), QPoint(10, 10));
    for (const char* name :
         {"info", "referal", "kick", "chanban", "mban", "subnetban", "suspendacc"}) {
        EXPECT_TRUE(items.contains(QLatin1String(name))) << name << items.join(',').toStdString();
    }
}

}  // namespace
}  // namespace tavren
