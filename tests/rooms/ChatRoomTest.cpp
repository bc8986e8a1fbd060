#include <gtest/gtest.h>

#include <QAction>
#include <QLabel>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>

#include "core/ClientSession.h"
#include "core/WireText.h"
#include "core/protocol/Catalogue.h"
#include "render/ui/ChatPane.h"
#include "rooms/RoomCommandHost.h"
#include "rooms/ui/ChatRoom.h"
#include "rooms/ui/RoomInputBox.h"
#include "rooms/ui/RoomTab.h"
#include "support/ScriptedPrompter.h"

namespace tavren {
namespace {

namespace in = protocol::server_to_client;

class QuietHost : public RoomCommandHost {
  public:
    void openSettings() override {}
    void openNicknameFormat() override {}
    void openAbout() override {}
    void closeRoomWindow() override { ++closeRequests; }
    int closeRequests = 0;
};

class ChatRoomTest : public ::testing::Test {
  protected:
    ChatRoomTest()
        : session(dir.path(), dir.filePath(QStringLiteral("settings.ini")),
                  ConnectionOptions::deployment(), prompter),
          window(session, host, prompter) {}

    void deliver(protocol::CodePair code, const QString& payload) {
        session.server().dispatcher().DispatchServerFrame(
            protocol::Frame{code, WireText::toWire(payload)});
    }

    QTemporaryDir dir;
    test::ScriptedPrompter prompter;
    ClientSession session;
    QuietHost host;
    ChatRoom window;
};

TEST_F(ChatRoomTest, TabsTitleAndStatusFollowTheChannels) {
    EXPECT_EQ(window.tabs().count(), 0);
    deliver(in::kJoinedRoom, QStringLiteral("General"));
    EXPECT_TRUE(window.isVisible());
    EXPECT_TRUE(window.windowTitle().endsWith(QStringLiteral(" Channel: (1)")));
    deliver(in::kMemberList, QStringLiteral("General:@\u00B3root;@alice;bob;"));
    EXPECT_EQ(window.channelStatus(), QStringLiteral("Channel: General"));
    EXPECT_EQ(window.usersStatus(), QStringLiteral("Users: 3"));

    QTreeWidget& list = window.tab(0)->memberList();
    ASSERT_EQ(list.topLevelItemCount(), 3);
    // The server's order stays; sub-item 1 holds the bare name.
    EXPECT_EQ(list.topLevelItem(0)->text(0), QStringLiteral("@\u00B3root"));
    EXPECT_EQ(list.topLevelItem(0)->text(1), QStringLiteral("root"));
    EXPECT_EQ(list.topLevelItem(2)->text(0), QStringLiteral("bob"));
    EXPECT_FALSE(list.topLevelItem(0)->icon(0).isNull());
    EXPECT_NE(list.topLevelItem(0)->icon(0).cacheKey(), list.topLevelItem(1)->icon(0).cacheKey());

    deliver(in::kJoinedRoom, QStringLiteral("Lobby Lounge"));
    EXPECT_TRUE(window.windowTitle().endsWith(QStringLiteral(" Channels: (2)")));
    EXPECT_EQ(window.tabs().currentIndex(), 1);
    EXPECT_EQ(window.usersStatus(), QStringLiteral("Users: 0"));

    // A line for the channel in the background marks its tab until it is chosen.
    deliver(in::kChannelHostMessage, QStringLiteral("General:bob:psst"));
    EXPECT_FALSE(window.tabs().tabIcon(0).isNull());
    window.tabs().setCurrentIndex(0);
    EXPECT_TRUE(window.tabs().tabIcon(0).isNull());
    EXPECT_EQ(window.usersStatus(), QStringLiteral("Users: 3"));
    window.tab(0)->pane().flush();
    EXPECT_TRUE(window.tab(0)->pane().toPlainText().contains(QStringLiteral("psst")));
}

TEST_F(ChatRoomTest, TypingClearingLeavingAndClosing) {
    deliver(in::kJoinedRoom, QStringLiteral("General"));
    deliver(in::kJoinedRoom, QStringLiteral("Lobby Lounge"));
    deliver(in::kChannelHostMessage, QStringLiteral("Lobby Lounge:bob:something to clear"));
    RoomTab* lobby = window.tab(1);
    ASSERT_NE(lobby, nullptr);
    lobby->pane().flush();
    ASSERT_TRUE(lobby->pane().toPlainText().contains(QStringLiteral("something")));

    lobby->input().setText(QStringLiteral("/clear"));
    QTest::keyClick(&lobby->input(), Qt::Key_Return);
    EXPECT_TRUE(lobby->input().text().isEmpty());
    lobby->pane().flush();
    EXPECT_FALSE(lobby->pane().toPlainText().contains(QStringLiteral("something")));
    // The line typed before comes back with Up.
    QTest::keyClick(&lobby->input(), Qt::Key_Up);
    EXPECT_EQ(lobby->input().text(), QStringLiteral("/clear"));

    // Offline: the line is not sent and the pane says so; the box is emptied all the same.
    lobby->input().setText(QStringLiteral("hello"));
    window.sendInput();
    EXPECT_TRUE(lobby->input().text().isEmpty());
    lobby->pane().flush();
    EXPECT_TRUE(lobby->pane().toPlainText().contains(QStringLiteral("not connected")));

    QTest::keyClick(&lobby->input(), Qt::Key_Escape);
    EXPECT_EQ(session.rooms().count(), 1);
    EXPECT_EQ(window.tabs().count(), 1);
    EXPECT_EQ(window.tabs().tabText(0), QStringLiteral("General"));

    window.tab(0)->input().setText(QStringLiteral("/exit"));
    window.sendInput();
    EXPECT_EQ(host.closeRequests, 1);

    window.close();
    EXPECT_EQ(session.rooms().count(), 0);
    EXPECT_EQ(window.tabs().count(), 0);
    EXPECT_TRUE(window.windowTitle().endsWith(QStringLiteral(" Channels: (0)")));
}

}  // namespace
}  // namespace tavren
