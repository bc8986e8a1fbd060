// The link's own parts: its send rules, the error log and the ping watchdog.
#include <gtest/gtest.h>

#include "FakePeer.h"
#include "Wait.h"
#include "core/ErrorLog.h"
#include "core/FloodMeter.h"
#include "core/FloodMeters.h"
#include "core/PingWatchdog.h"
#include "core/ServerLink.h"
#include "core/protocol/Catalogue.h"

namespace tavren {
namespace {

using test::waitUntil;
namespace out = protocol::client_to_server;

TEST(ServerLinkTest, SendPacketSendsWholeFramesAndMetersEveryRequestButTheTypingNotice) {
    test::FakePeer peer;
    FloodMeters meters;
    FloodMeter room(3);
    FloodMeter privateChat(10);
    meters.add(&room);
    meters.add(&privateChat);
    ServerLink link(meters);

    // Not connected, or not yet: the socket is closed again and nothing is sent or counted.
    link.SendPacket(QStringLiteral("General:hi"), out::kRoomLine);
    link.connectTo(QStringLiteral("127.0.0.1"), peer.port(), false);
    link.SendPacket(QStringLiteral("General:hi"), out::kRoomLine);
    EXPECT_EQ(link.socketState(), QAbstractSocket::UnconnectedState);
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

TEST(ErrorLogTest, StampsInTwelveHourTimeAndALongLogKeepsItsNewestWholeLines) {
    EXPECT_EQ(ErrorLog::formatLine(QTime(15, 7, 9), QStringLiteral("boom")),
              QStringLiteral("(3:07:09 PM) ~ boom\r\n"));
    EXPECT_EQ(ErrorLog::formatLine(QTime(0, 5, 0), QStringLiteral("x")),
              QStringLiteral("(12:05:00 AM) ~ x\r\n"));
    EXPECT_EQ(ErrorLog::formatLine(QTime(12, 0, 1), QStringLiteral("x")),
              QStringLiteral("(12:00:01 PM) ~ x\r\n"));
    ErrorLog log;
    for (int i = 0; i < 6000; ++i) {
        log.ShowErrorMessage(
            QStringLiteral("line %1 of a reconnect loop that goes on and on").arg(i));
    }
    EXPECT_LE(log.text().size(), ErrorLog::kMaxLength + 100);
    EXPECT_TRUE(log.text().startsWith(QLatin1Char('(')));
    EXPECT_TRUE(log.text().endsWith(
        QStringLiteral("line 5999 of a reconnect loop that goes on and on\r\n")));
}

TEST(PingWatchdogTest, FiveSilentTicksTimeOutExactlyOnceAndPingsKeepItAlive) {
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
    watchdog.tick();
    EXPECT_EQ(timeouts, 1);
    EXPECT_FALSE(watchdog.running()) << "stopped, so the time-out is reported once";
}

}  // namespace
}  // namespace tavren
