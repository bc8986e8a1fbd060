#include <gtest/gtest.h>

#include "FakePeer.h"
#include "Wait.h"
#include "core/ErrorLog.h"
#include "core/FloodMeter.h"
#include "core/FloodMeters.h"
#include "core/PingWatchdog.h"
#include "core/ServerDispatcher.h"
#include "core/ServerLink.h"
#include "core/WireText.h"
#include "core/protocol/Catalogue.h"

namespace tavren {
namespace {

using test::waitUntil;
namespace in = protocol::server_to_client;
namespace out = protocol::client_to_server;

TEST(ServerLinkTest, SendsWholeFramesAndCountsEveryRequestButTheTypingNotice) {
    test::FakePeer peer;
    FloodMeters meters;
    FloodMeter room(3);
    FloodMeter privateChat(10);
    meters.add(&room);
    meters.add(&privateChat);
    ServerLink link(meters);

    // Not connected: nothing goes out and nothing is counted.
    link.SendPacket(QStringLiteral("General:hi"), out::kRoomLine);
    EXPECT_EQ(room.value(), 0);

    link.connectTo(QStringLiteral("127.0.0.1"), peer.port(), false);
    ASSERT_TRUE(waitUntil([&] { return link.isConnected(); }));
    link.SendPacket(QStringLiteral("/ipbans:General"), out::kRoomLine);
    link.SendPacket(QStringLiteral("bob:1"), out::kTypingStatus);
    link.SendPacket(QString::fromUtf8("bob:caf\u00e9 \u20ac"), out::kPrivateMessage);
    ASSERT_TRUE(waitUntil([&] { return peer.frames().size() == 3; }));

    EXPECT_EQ(peer.raw().left(25),
              QByteArray::fromHex("2A14 0000000F 0002 0007 2F697062616E733A47656E6572616C"));
    // Text leaves as Windows-1252, one byte per character.
    EXPECT_EQ(peer.frames()[2].payload, std::string("bob:caf\xE9 \x80"));
    EXPECT_EQ(room.value(), 2);
    EXPECT_EQ(privateChat.value(), 2);

    link.SendPacket(QStringLiteral("General:again"), out::kRoomLine);
    link.SendPacket(QStringLiteral("General:and again"), out::kRoomLine);
    EXPECT_EQ(room.value(), 3) << "a meter never rises past its maximum";
    EXPECT_EQ(privateChat.value(), 4);

    // A window that closed without unregistering is simply skipped.
    {
        FloodMeter gone(5);
        meters.add(&gone);
    }
    link.SendPacket(QStringLiteral("x"), out::kLocateUser);
    EXPECT_EQ(meters.count(), 2);
    EXPECT_EQ(privateChat.value(), 5);
}

TEST(ServerLinkTest, FramesArriveWholeInOrderHoweverTheBytesAreSplit) {
    test::FakePeer peer;
    FloodMeters meters;
    ServerLink link(meters);
    std::vector<protocol::Frame> seen;
    link.setFrameSink([&](const protocol::Frame& frame) { seen.push_back(frame); });
    link.connectTo(QStringLiteral("127.0.0.1"), peer.port(), false);
    ASSERT_TRUE(waitUntil([&] { return link.isConnected() && peer.current() != nullptr; }));

    const std::string first = protocol::EncodeFrame(in::kPing, "Ping");
    const std::string second = protocol::EncodeFrame(in::kOnlineCount, "12");
    const QByteArray both = QByteArray::fromStdString(first + second);
    peer.sendRaw(both.left(7));
    test::runEventsFor(50);
    EXPECT_TRUE(seen.empty());
    peer.sendRaw(both.mid(7));
    ASSERT_TRUE(waitUntil([&] { return seen.size() == 2; }));
    EXPECT_EQ(seen[0].code, in::kPing);
    EXPECT_EQ(seen[1].payload, "12");
}

TEST(ServerDispatcherTest, RoutesByPairAndWholeGroupsDropsTheRest) {
    ServerDispatcher dispatcher;
    std::vector<ServerMessage> results;
    std::vector<ServerMessage> pings;
    ASSERT_TRUE(dispatcher.route(protocol::CodePair{3, 1},
                                 [&](const ServerMessage& m) { results.push_back(m); }));
    ASSERT_TRUE(dispatcher.route(in::kPing, [&](const ServerMessage& m) { pings.push_back(m); }));
    // Pairs the server never sends have no row to route.
    EXPECT_FALSE(dispatcher.route(protocol::CodePair{5, 1}, [](const ServerMessage&) {}));
    EXPECT_FALSE(dispatcher.route(protocol::CodePair{2, 6}, [](const ServerMessage&) {}));
    EXPECT_FALSE(dispatcher.route(protocol::CodePair{7, 17}, [](const ServerMessage&) {}));

    dispatcher.DispatchServerFrame({protocol::CodePair{3, 2}, "Registration Success!"});
    dispatcher.DispatchServerFrame({protocol::CodePair{3, 900}, "Account Creation Error!:taken"});
    dispatcher.DispatchServerFrame({in::kPing, "Ping"});
    ASSERT_EQ(results.size(), 2u);
    EXPECT_EQ(results[1].payload, QStringLiteral("Account Creation Error!:taken"));
    EXPECT_EQ(pings.size(), 1u);

    // Unknown pairs: consumed, counted, no effect.
    for (const protocol::CodePair code :
         {protocol::CodePair{5, 1}, protocol::CodePair{9, 1}, protocol::CodePair{2, 6},
          protocol::CodePair{1, 19}, protocol::CodePair{7, 17}, protocol::CodePair{0, 0}}) {
        dispatcher.DispatchServerFrame({code, "x"});
    }
    EXPECT_EQ(dispatcher.droppedUnknown(), 6);

    // Known pairs whose feature is not built yet end in one place.
    for (const protocol::CodePair code :
         {in::kMemberList, in::kPrivateMessage, protocol::CodePair{6, 1}, protocol::CodePair{7, 1},
          protocol::CodePair{7, 16}, protocol::CodePair{4, 1}}) {
        EXPECT_FALSE(dispatcher.isRoutedToFeature(code));
        dispatcher.DispatchServerFrame({code, "x"});
    }
    EXPECT_EQ(dispatcher.droppedUntilBuilt(), 6);
    EXPECT_EQ(results.size(), 2u);
}

TEST(ServerDispatcherTest, PayloadsReachHandlersAsTextWithSeparatorsIntact) {
    ServerDispatcher dispatcher;
    QString payload;
    dispatcher.route(in::kListUpdate, [&](const ServerMessage& m) { payload = m.payload; });
    dispatcher.DispatchServerFrame({in::kListUpdate, std::string("J\xFCrgen\x01"
                                                                 "a:b;c\x02\x80")});
    EXPECT_EQ(payload, QString::fromUtf8("J\u00fcrgen\u0001a:b;c\u0002\u20ac"));
    EXPECT_EQ(WireText::toWire(payload), std::string("J\xFCrgen\x01"
                                                     "a:b;c\x02\x80"));
}

TEST(ErrorLogTest, LinesAreStampedInTwelveHourTimeAndTheCaretMarksTheNewLine) {
    EXPECT_EQ(ErrorLog::formatLine(QTime(15, 7, 9), QStringLiteral("boom")),
              QStringLiteral("(3:07:09 PM) ~ boom\r\n"));
    EXPECT_EQ(ErrorLog::formatLine(QTime(0, 5, 0), QStringLiteral("x")),
              QStringLiteral("(12:05:00 AM) ~ x\r\n"));
    EXPECT_EQ(ErrorLog::formatLine(QTime(12, 0, 1), QStringLiteral("x")),
              QStringLiteral("(12:00:01 PM) ~ x\r\n"));

    ErrorLog log;
    log.setClock([] { return QTime(9, 30, 0); });
    int shown = 0;
    int lastCaret = -1;
    QObject::connect(&log, &ErrorLog::shown, [&] { ++shown; });
    QObject::connect(&log, &ErrorLog::textChanged,
                     [&](const QString&, int caret) { lastCaret = caret; });
    log.ShowErrorMessage(QStringLiteral("first"), QStringLiteral("Connection"));
    log.ShowErrorMessage(QStringLiteral("second"));
    EXPECT_EQ(log.heading(), QStringLiteral("Tavren Error Message: Connection"));
    EXPECT_EQ(log.text(), QStringLiteral("(9:30:00 AM) ~ first\r\n(9:30:00 AM) ~ second\r\n"));
    EXPECT_EQ(lastCaret, 22);
    EXPECT_EQ(shown, 2);

    // A log that grows for days keeps its newest lines, cut at a line start.
    for (int i = 0; i < 6000; ++i) {
        log.ShowErrorMessage(
            QStringLiteral("line %1 of a reconnect loop that goes on and on").arg(i));
    }
    EXPECT_LE(log.text().size(), ErrorLog::kMaxLength + 100);
    EXPECT_TRUE(log.text().startsWith(QLatin1Char('(')));
    EXPECT_TRUE(log.text().endsWith(
        QStringLiteral("line 5999 of a reconnect loop that goes on and on\r\n")));
}

TEST(PingWatchdogTest, FiveSilentTicksTimeOutOnceAndPingsKeepItAlive) {
    PingWatchdog watchdog(60000);
    int timeouts = 0;
    QObject::connect(&watchdog, &PingWatchdog::timedOut, [&] { ++timeouts; });
    watchdog.start();
    for (int i = 0; i < 4; ++i) {
        watchdog.tick();
    }
    watchdog.pingArrived();
    for (int i = 0; i < 4; ++i) {
        watchdog.tick();
    }
    EXPECT_EQ(timeouts, 0);
    EXPECT_TRUE(watchdog.running());
    watchdog.tick();
    EXPECT_EQ(timeouts, 1);
    EXPECT_FALSE(watchdog.running());
    EXPECT_EQ(watchdog.silentTicks(), 0);
}

}  // namespace
}  // namespace tavren
