#include <gtest/gtest.h>

#include <QAction>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTest>
#include <cstdlib>

#include "core/ClientSession.h"
#include "core/WireText.h"
#include "core/protocol/Catalogue.h"
#include "pm/BuddyDirectory.h"
#include "pm/ui/ChatPM.h"
#include "pm/ui/PmInputBox.h"
#include "pm/ui/PmTab.h"
#include "render/ui/ChatPane.h"
#include "support/ScriptedPrompter.h"

namespace tavren {
namespace {

namespace in = protocol::server_to_client;

class ChatPMTest : public ::testing::Test {
  protected:
    ChatPMTest()
        : session(dir.path(), dir.filePath(QStringLiteral("settings.ini")),
                  ConnectionOptions::deployment(), prompter),
          window(session) {}

    void deliver(protocol::CodePair code, const QString& payload) {
        session.server().dispatcher().DispatchServerFrame(
            protocol::Frame{code, WireText::toWire(payload)});
    }

    // Every button the tests press exists; a missing one ends the run at once.
    QPushButton& button(const char* name) {
        QPushButton* found = window.button(QString::fromLatin1(name));
        if (found == nullptr) {
            std::abort();
        }
        return *found;
    }

    QString paneText(int position) {
        ChatPane& pane = window.tab(position)->pane();
        pane.flush();
        return pane.toPlainText();
    }

    QTemporaryDir dir;
    test::ScriptedPrompter prompter;
    ClientSession session;
    ChatPM window;
};

TEST_F(ChatPMTest, MessagesOpenTheWindowAndTabsWithTheirLabelsAndTitles) {
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Private Messages: (0)"));
    EXPECT_FALSE(button("closeButton").isEnabled());

    deliver(in::kPrivateMessage, QStringLiteral("alice:hello there"));
    EXPECT_TRUE(window.isVisible());
    ASSERT_EQ(window.tabs().count(), 1);
    EXPECT_EQ(window.tabs().tabText(0), QStringLiteral("alice"));
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Private Message: alice"));
    EXPECT_TRUE(paneText(0).contains(QStringLiteral("hello there")));
    PmTab* alice = window.tab(0);
    EXPECT_EQ(alice->ownStatus().text(), QStringLiteral("My Status: (Nothing..)"));
    EXPECT_EQ(alice->peerStatus().text(), QStringLiteral("Typing Status: (Nothing..)"));
    EXPECT_EQ(window.focusWidget(), &alice->input());
    EXPECT_TRUE(button("closeButton").isEnabled());
    EXPECT_TRUE(button("XPButton5").isEnabled());

    // Bob's message waits in a marked tab behind Alice's; his typing shows in his tab only.
    deliver(in::kPrivateMessage, QStringLiteral("bob:psst"));
    deliver(in::kTypingStatus, QStringLiteral("bob:2"));
    ASSERT_EQ(window.tabs().count(), 2);
    EXPECT_EQ(window.tabs().currentIndex(), 0);
    EXPECT_FALSE(window.tabs().tabIcon(1).isNull());
    EXPECT_EQ(window.tab(1)->peerStatus().text(), QStringLiteral("Typing Status: (BackSpacing..)"));
    EXPECT_EQ(alice->peerStatus().text(), QStringLiteral("Typing Status: (Nothing..)"));
    window.tabs().setCurrentIndex(1);
    EXPECT_TRUE(window.tabs().tabIcon(1).isNull());
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Private Message: bob"));
    EXPECT_EQ(window.focusWidget(), &window.tab(1)->input());

    // After a close the title counts the conversations left.
    window.action(QStringLiteral("closewin"))->trigger();
    EXPECT_EQ(window.tabs().count(), 1);
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Private Messages: (1)"));
    EXPECT_EQ(window.tab(0), alice);
    EXPECT_EQ(window.tabs().currentIndex(), 0);

    window.close();
    EXPECT_EQ(session.privateChats().count(), 0);
    EXPECT_EQ(window.tabs().count(), 0);
    // The next message brings the window back.
    deliver(in::kPrivateMessage, QStringLiteral("carol:knock knock"));
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(window.tabs().tabText(0), QStringLiteral("carol"));
}

TEST_F(ChatPMTest, TheEntryBoxSetsTheTypingLabelAndEnterSends) {
    const int position = session.privateChats().openConversation(QStringLiteral("alice"));
    PmTab* alice = window.tab(position);
    ASSERT_NE(alice, nullptr);
    PmInputBox& box = alice->input();
    deliver(in::kPrivateMessage, QStringLiteral("alice:something to clear"));

    QTest::keyClicks(&box, QStringLiteral("hi"));
    EXPECT_EQ(alice->ownStatus().text(), QStringLiteral("My Status: (Typing..)"));
    QTest::keyClick(&box, Qt::Key_Backspace);
    EXPECT_EQ(alice->ownStatus().text(), QStringLiteral("My Status: (BackSpacing..)"));
    session.privateChats().typingTick();
    session.privateChats().typingTick();
    EXPECT_EQ(alice->ownStatus().text(), QStringLiteral("My Status: (Entered Text..)"));
    QTest::keyClick(&box, Qt::Key_Backspace);
    EXPECT_EQ(alice->ownStatus().text(), QStringLiteral("My Status: (Nothing..)"));

    // Shift+Enter breaks the line; Enter sends, and a command sent empties the box.
    QTest::keyClicks(&box, QStringLiteral("/clear"));
    QTest::keyClick(&box, Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(box.text(), QStringLiteral("/clear\n"));
    QTest::keyClick(&box, Qt::Key_Return);
    EXPECT_TRUE(box.text().isEmpty());
    EXPECT_FALSE(paneText(position).contains(QStringLiteral("something")));
    // Offline a message stays in the box to be sent later, and the pane says why.
    QTest::keyClicks(&box, QStringLiteral("are you there?"));
    alice->sendButton().click();
    EXPECT_EQ(box.text(), QStringLiteral("are you there?"));
    EXPECT_TRUE(paneText(position).contains(QStringLiteral("not connected")));
}

class FakeBuddies : public BuddyDirectory {
  public:
    bool contains(const QString& name) const override {
        return names.contains(name, Qt::CaseInsensitive);
    }
    void addBuddy(const QString& name) override { names << name; }
    QStringList names;
};

TEST_F(ChatPMTest, TabMenuButtonsAndTheMemberActions) {
    session.settings().setNickname(QStringLiteral("me"));
    PrivateChats& chats = session.privateChats();
    FakeBuddies buddies;
    chats.setBuddyDirectory(&buddies);
    chats.openConversation(QStringLiteral("bob"));
    chats.openConversation(QStringLiteral("me"));

    QMenu menu;
    window.fillTabMenu(menu, 0);
    ASSERT_EQ(menu.actions().size(), 2);
    EXPECT_EQ(menu.actions()[0]->text(), QStringLiteral("[X] Close: bob"));
    EXPECT_EQ(menu.actions()[1]->text(), QStringLiteral("Add User to Buddy List..."));
    EXPECT_TRUE(menu.actions()[1]->isEnabled());
    menu.actions()[1]->trigger();
    EXPECT_EQ(buddies.names, QStringList(QStringLiteral("bob")));
    QMenu again;
    window.fillTabMenu(again, 0);
    EXPECT_EQ(again.actions()[1]->text(), QStringLiteral("Already in Buddy List..."));
    EXPECT_FALSE(again.actions()[1]->isEnabled());

    // Ignoring oneself is refused with a box; the button acts on the selected conversation.
    button("XPButton3").click();
    ASSERT_EQ(prompter.asked.size(), 1u);
    EXPECT_EQ(prompter.asked[0].title, QStringLiteral("Error!"));
    button("inviteButton").click();
    ASSERT_EQ(prompter.asked.size(), 2u);
    EXPECT_EQ(prompter.asked[1].title, QStringLiteral("Error: Lazyness.."));

    window.tabs().setCurrentIndex(0);
    EXPECT_FALSE(button("addbuddyButton").isEnabled());
    button("XPButton3").click();
    EXPECT_TRUE(session.ignoreList().contains(QStringLiteral("bob")));
    EXPECT_TRUE(paneText(0).contains(QStringLiteral("Ignoring User...")));
    button("inviteButton").click();
    EXPECT_EQ(prompter.asked.back().text, QStringLiteral("No active channels present..."));

    menu.actions()[0]->trigger();
    EXPECT_EQ(chats.positionOf(QStringLiteral("bob")), -1);
    EXPECT_EQ(window.tabs().count(), 1);
    chats.setBuddyDirectory(nullptr);
}

}  // namespace
}  // namespace tavren
