#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTemporaryDir>

#include "core/ClientSession.h"
#include "core/WireText.h"
#include "core/protocol/Catalogue.h"
#include "rooms/RoomCommandHost.h"
#include "rooms/RoomCommands.h"
#include "rooms/RoomSession.h"
#include "support/ScriptedPrompter.h"

namespace tavren {
namespace {

namespace in = protocol::server_to_client;

// One client, offline, fed frames as if the server had sent them.
class RoomSessionTest : public ::testing::Test {
  protected:
    RoomSessionTest()
        : session(dir.path(), dir.filePath(QStringLiteral("settings.ini")),
                  ConnectionOptions::deployment(), prompter) {
        QObject::connect(&rooms(), &RoomSession::lineAdded,
                         [this](int pane, const QString& html) { lines.push_back({pane, html}); });
    }

    RoomSession& rooms() { return session.rooms(); }

    void deliver(protocol::CodePair code, const QString& payload) {
        session.server().dispatcher().DispatchServerFrame(
            protocol::Frame{code, WireText::toWire(payload)});
    }

    // The lines that reached a room's pane after the greeting every new tab starts with.
    QStringList linesOf(int room) const {
        QStringList found;
        for (const auto& [pane, html] : lines) {
            if (pane == session.rooms().room(room).paneIndex &&
                !html.contains(QStringLiteral("Now talking in "))) {
                found << html;
            }
        }
        return found;
    }

    QTemporaryDir dir;
    test::ScriptedPrompter prompter;
    ClientSession session;
    std::vector<std::pair<int, QString>> lines;
};

TEST_F(RoomSessionTest, JoinConfirmationsOpenTabsAndMemberListsFillThem) {
    QSignalSpy opened(&rooms(), &RoomSession::roomOpened);
    deliver(in::kJoinedRoom, QStringLiteral("General"));
    ASSERT_EQ(rooms().count(), 1);
    EXPECT_EQ(rooms().selected(), 0);
    EXPECT_EQ(opened.count(), 1);
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_TRUE(lines[0].second.contains(QStringLiteral("Now talking in General.")));

    // Channel names match without regard to case.
    deliver(in::kMemberList, QStringLiteral("general:@\u00B3root;@alice;bob;"));
    EXPECT_EQ(rooms().room(0).members,
              QStringList({QStringLiteral("@\u00B3root"), QStringLiteral("@alice"),
                           QStringLiteral("bob")}));
    // Not a list: the old one stays.
    deliver(in::kMemberList, QStringLiteral("General:bob"));
    EXPECT_EQ(rooms().room(0).members.size(), 3);
    // A list for a channel without a tab opens nothing.
    deliver(in::kMemberList, QStringLiteral("Elsewhere:bob;"));
    EXPECT_EQ(rooms().count(), 1);
    deliver(in::kMemberList, QStringLiteral("General:;"));
    EXPECT_TRUE(rooms().room(0).members.isEmpty());

    // Confirming an open channel again (a rejoin) keeps its tab.
    deliver(in::kJoinedRoom, QStringLiteral("GENERAL"));
    EXPECT_EQ(rooms().count(), 1);
    EXPECT_EQ(rooms().room(0).name, QStringLiteral("GENERAL"));
    EXPECT_EQ(opened.count(), 1);
    // Names that could not be channels are not.
    deliver(in::kJoinedRoom, QStringLiteral("bad:name"));
    deliver(in::kJoinedRoom, QString());
    EXPECT_EQ(rooms().count(), 1);
}

TEST_F(RoomSessionTest, LinesReachTheirOwnPaneMarkUnreadAndSkipTheIgnored) {
    deliver(in::kJoinedRoom, QStringLiteral("General"));
    deliver(in::kJoinedRoom, QStringLiteral("Lobby"));
    ASSERT_EQ(rooms().selected(), 1);

    deliver(in::kChannelHostMessage, QStringLiteral("general:bob:hi ;5 there: friend"));
    ASSERT_EQ(linesOf(0).size(), 1);
    EXPECT_TRUE(linesOf(0)[0].contains(QStringLiteral(">bob:<")));
    EXPECT_TRUE(linesOf(0)[0].contains(QStringLiteral("105.gif")));
    EXPECT_TRUE(linesOf(0)[0].contains(QStringLiteral("there: friend")));
    EXPECT_TRUE(rooms().room(0).unread);
    EXPECT_FALSE(rooms().room(1).unread);
    rooms().select(0);
    EXPECT_FALSE(rooms().room(0).unread);

    session.ignoreList().add(QStringLiteral("Mallory"));
    deliver(in::kChannelHostMessage, QStringLiteral("General:mallory:spam"));
    deliver(in::kChannelHostMessage, QStringLiteral("Nowhere:bob:lost"));
    EXPECT_EQ(linesOf(0).size() + linesOf(1).size(), 1);

    deliver(in::kChannelHostMessage, QStringLiteral("Lobby:**ChanHost:Topic: cards"));
    ASSERT_EQ(linesOf(1).size(), 1);
    EXPECT_TRUE(linesOf(1)[0].contains(QStringLiteral("ChanHost:")));
    EXPECT_FALSE(linesOf(1)[0].contains(QStringLiteral("**ChanHost")));
    EXPECT_TRUE(rooms().room(1).unread);
}

TEST_F(RoomSessionTest, ASendersFormatColoursTheLineAndABrokenOneIsIgnored) {
    deliver(in::kJoinedRoom, QStringLiteral("General"));
    // Blue name, red text, bold and italic, size 3, Verdana.
    deliver(in::kChannelHostMessage,
            QStringLiteral("General:bob\u000116711680;255;True;True;False;3;Verdana:hello"));
    deliver(in::kChannelHostMessage, QStringLiteral("General:carol\u0001not a format:hello"));
    const QStringList shown = linesOf(0);
    ASSERT_EQ(shown.size(), 2);
    EXPECT_TRUE(shown[0].contains(QStringLiteral("<font color='0000FF' face='Arial' size='3'>")));
    EXPECT_TRUE(shown[0].contains(QStringLiteral("<font color='FF0000' face='Arial' size='3'><b>")));
    EXPECT_TRUE(shown[0].contains(QStringLiteral("<i>")));
    EXPECT_TRUE(shown[0].contains(QStringLiteral("Verdana")));
    EXPECT_FALSE(shown[0].contains(QChar(1)));
    // The member's own colours for others: color5 names, color6 text.
    EXPECT_TRUE(shown[1].contains(QStringLiteral("<font color='8080FF' face='Arial' size='2'>")));
    EXPECT_TRUE(shown[1].contains(QStringLiteral(">carol:<")));
}

TEST_F(RoomSessionTest, LeavingChoosesTheNextTabOrTheFirstAfterTheLast) {
    for (const char* name : {"Alpha1", "Bravo2", "Charlie3"}) {
        deliver(in::kJoinedRoom, QString::fromLatin1(name));
    }
    QSignalSpy removed(&rooms(), &RoomSession::roomRemoved);
    rooms().select(1);
    rooms().leave(1);
    EXPECT_EQ(rooms().room(rooms().selected()).name, QStringLiteral("Charlie3"));
    rooms().leave(rooms().selected());
    EXPECT_EQ(rooms().room(rooms().selected()).name, QStringLiteral("Alpha1"));
    rooms().leave(0);
    EXPECT_EQ(rooms().count(), 0);
    EXPECT_EQ(rooms().selected(), -1);
    ASSERT_EQ(removed.count(), 3);
    // Each removal names the pane that goes with the tab.
    EXPECT_EQ(removed.at(0).at(1).toInt(), 1);
    EXPECT_EQ(removed.at(1).at(1).toInt(), 2);
    EXPECT_EQ(removed.at(2).at(1).toInt(), 0);
}

TEST_F(RoomSessionTest, NoticesOfTheClientItself) {
    deliver(in::kJoinedRoom, QStringLiteral("General"));
    deliver(in::kMemberList, QStringLiteral("General:alice;bob;"));
    rooms().join(QStringLiteral("general"));
    deliver(in::kMemberList, QStringLiteral("General:alice;carol;"));
    const QStringList shown = linesOf(0);
    ASSERT_EQ(shown.size(), 3);
    EXPECT_TRUE(shown[0].contains(QStringLiteral("Error: Already located in channel..")));
    EXPECT_TRUE(shown[0].contains(QStringLiteral("You are already located in channel: general!")));
    EXPECT_TRUE(shown[1].contains(QStringLiteral("carol has joined the channel.")));
    EXPECT_TRUE(shown[2].contains(QStringLiteral("bob has left the channel.")));
    // Removed by the server: said in the pane as the tab goes.
    deliver(in::kRemovedFromRoom, QStringLiteral("General"));
    EXPECT_EQ(rooms().count(), 0);
    EXPECT_TRUE(lines.back().second.contains(QStringLiteral("Server: ")));
    EXPECT_TRUE(lines.back().second.contains(QStringLiteral("You have been removed from this channel...")));
}

TEST_F(RoomSessionTest, TheServerSetsTheFloodMeter) {
    deliver(in::kFloodMeters, QStringLiteral("3;250"));
    EXPECT_EQ(rooms().flooder().maximum(), 3);
    EXPECT_EQ(rooms().drainIntervalMs(), 250);
    deliver(in::kFloodMeters, QStringLiteral("x;;"));
    deliver(in::kFloodMeters, QStringLiteral("-4;100"));
    EXPECT_EQ(rooms().flooder().maximum(), 3);
    EXPECT_EQ(rooms().drainIntervalMs(), 250);
}

class CountingHost : public RoomCommandHost {
  public:
    void openSettings() override { ++settings; }
    void openNicknameFormat() override { ++format; }
    void openAbout() override { ++about; }
    void closeRoomWindow() override { ++closed; }
    void lookUpWeather(const QString& channel, const QString& code) override {
        weather << channel + QLatin1Char('/') + code;
    }
    void lookUpRadio(const QString& channel) override { radio << channel; }
    void openNews() override { ++news; }
    QStringList weather;
    QStringList radio;
    int news = 0;
    int settings = 0;
    int format = 0;
    int about = 0;
    int closed = 0;
};

TEST_F(RoomSessionTest, TextCommandsOfTheClientActWithoutTheServer) {
    deliver(in::kJoinedRoom, QStringLiteral("General"));
    CountingHost host;
    RoomCommands commands(rooms(), session.server().link(), host);
    QSignalSpy cleared(&rooms(), &RoomSession::paneCleared);

    EXPECT_TRUE(commands.submit(0, QStringLiteral("/clear")));
    EXPECT_EQ(cleared.count(), 1);
    EXPECT_TRUE(commands.submit(0, QStringLiteral("/CONFIG")));
    EXPECT_TRUE(commands.submit(0, QStringLiteral("/format")));
    EXPECT_TRUE(commands.submit(0, QStringLiteral("/about")));
    EXPECT_EQ(host.settings + host.format + host.about, 3);
    // Not a postal code: the text stays in the box, nothing happens.
    EXPECT_FALSE(commands.submit(0, QStringLiteral("/weather abc")));
    EXPECT_TRUE(host.weather.isEmpty());
    // The lookups are asked for the channel they were typed in; the line comes with the answer.
    const auto before = lines.size();
    EXPECT_TRUE(commands.submit(0, QStringLiteral("/Weather 90210")));
    EXPECT_TRUE(commands.submit(0, QStringLiteral("/radio")));
    EXPECT_TRUE(commands.submit(0, QStringLiteral("/news")));
    EXPECT_EQ(host.weather, QStringList{QStringLiteral("General/90210")});
    EXPECT_EQ(host.radio, QStringList{QStringLiteral("General")});
    EXPECT_EQ(host.news, 1);
    EXPECT_EQ(lines.size(), before);
    EXPECT_TRUE(commands.submit(0, QStringLiteral("/invite Bob")));
    EXPECT_TRUE(lines.back().second.contains(
        QStringLiteral("\u2022 Invited <b>Bob</b> to <b>General</b>")));
    EXPECT_TRUE(commands.submit(0, QStringLiteral("/exit")));
    EXPECT_EQ(host.closed, 1);
    EXPECT_TRUE(commands.submit(0, QStringLiteral("/leave")));
    EXPECT_EQ(rooms().count(), 0);
}

}  // namespace
}  // namespace tavren
