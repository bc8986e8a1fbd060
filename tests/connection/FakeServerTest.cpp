// A scripted fake server for what a correct server never does: silence, hostile bytes, results
// and notices outside the script.
#include <gtest/gtest.h>

#include "ClientUnderTest.h"
#include "FakePeer.h"
#include "Wait.h"
#include "core/protocol/Catalogue.h"

namespace tavren {
namespace {

using protocol::CodePair;
using test::waitUntil;
namespace in = protocol::server_to_client;
namespace out = protocol::client_to_server;

TEST(FakeServerTest, SilenceTimesTheClientOutOnceAndItReconnectsButNotAfterAClosingNotice) {
    test::FakePeer server;
    server.setResponder(&test::FakePeer::answerLoginWithoutPings);
    test::ClientUnderTest client;
    QStringList paneLines;
    QObject::connect(&client.session->connection(), &ServerConnection::statusLine,
                     [&](const QString& line) { paneLines << line; });
    client.startLogin(server.port());
    ASSERT_TRUE(waitUntil([&] { return client.loginsAccepted == 1; }));
    EXPECT_TRUE(server.received(out::kMailReceive)) << "a login asks for the mail";

    // No pings: five watchdog intervals later the client gives up, then logs in again.
    ASSERT_TRUE(waitUntil([&] { return client.loginsAccepted == 2; }));
    const QString timedOut = QStringLiteral(
        "Server: You have been timed out due to no ping requests, Auto Relogin Enabled..");
    EXPECT_EQ(client.wentOffline, 1);
    // The panes hear of the loss and of the way back.
    EXPECT_EQ(paneLines,
              (QStringList{timedOut, QStringLiteral("Server: Reconnected, you are back online.")}));
    EXPECT_EQ(client.errors().count(timedOut), 1);
    EXPECT_TRUE(client.messages().isEmpty());

    // This time the server says why it closes: no automatic reconnect, or two places logging in
    // would throw each other out forever.
    server.send(CodePair{4, 1},
                "You have been logged out: your account logged in from another place.");
    server.closeCurrent();
    ASSERT_TRUE(waitUntil([&] { return client.wentOffline == 2; }));
    EXPECT_EQ(client.messages(),
              QStringList{QStringLiteral(
                  "You have been logged out: your account logged in from another place.")});
    EXPECT_TRUE(client.errors().contains(
        QStringLiteral("Server: You have been disconnected from the server.")));
    EXPECT_EQ(client.session->login().button().caption, QStringLiteral("&Login"));
    test::runEventsFor(1000);
    EXPECT_EQ(server.connections(), 2);
}

TEST(FakeServerTest, HostileFramesEndTheLinkWithAnErrorLineAndNoCrash) {
    struct Case {
        const char* what;
        QByteArray bytes;
        QString expected;
    };
    for (const Case& hostile : {
             Case{"not a frame", QByteArrayLiteral("GET / HTTP/1.1\r\n\r\n"),
                  QStringLiteral("lead byte")},
             Case{"wrong tag", QByteArray::fromHex("2A15000000000001000A"),
                  QStringLiteral("tag byte")},
             Case{"huge length", QByteArray::fromHex("2A147FFFFFF60001000A"),
                  QStringLiteral("payload length")},
             Case{"code out of range", QByteArray::fromHex("2A1400000000FFFF0001"),
                  QStringLiteral("command code")},
         }) {
        test::FakePeer server;
        server.setResponder([&](test::FakePeer& peer, const protocol::Frame& frame) {
            // After a good start, so that the client is logged in when the garbage comes.
            test::FakePeer::answerLoginWithoutPings(peer, frame);
            if (frame.code == out::kMailReceive) {
                peer.send(in::kOnlineCount, "3");
                peer.sendRaw(hostile.bytes);
                peer.send(in::kScore, "never shown");
            }
        });
        test::ClientUnderTest client;
        QStringList scores;
        QObject::connect(client.session.get(), &ServerSession::scoreChanged,
                         [&](const QString& text) { scores << text; });
        client.startLogin(server.port());
        ASSERT_TRUE(waitUntil([&] { return client.wentOffline == 1; })) << hostile.what;
        EXPECT_TRUE(client.errors().contains(QStringLiteral("Frame refused"))) << hostile.what;
        EXPECT_TRUE(client.errors().contains(hostile.expected)) << hostile.what;
        EXPECT_FALSE(client.session->online());
        EXPECT_EQ(client.session->link().socketState(), QAbstractSocket::UnconnectedState);
        EXPECT_TRUE(scores.isEmpty()) << "nothing after the bad bytes is dispatched";
        EXPECT_TRUE(client.messages().isEmpty()) << hostile.what;
    }
}

TEST(FakeServerTest, PingsBeforeLoginAreAnsweredAndFramesOutsideTheScriptAreShownNotTrusted) {
    test::FakePeer server;
    server.setResponder([](test::FakePeer& peer, const protocol::Frame& frame) {
        if (frame.code == out::kVersionBeforeLogin) {
            // A ping, results nobody asked for, a notice, a list, frames of features not built.
            peer.send(in::kPing, "Ping");
            peer.send(CodePair{3, 7}, "Registration Success!");
            // (4, 3) is the news; any other group 4 code is a notice.
            peer.send(CodePair{4, 9}, "Maintenance at noon.");
            peer.send(in::kListUpdate, "one\x01two\x01");
            peer.send(CodePair{2, 5}, "General:@bob");
            peer.send(CodePair{5, 1}, "");
            peer.send(in::kHello, "fake");
        }
    });
    test::ClientUnderTest client;
    client.startLogin(server.port());
    ASSERT_TRUE(waitUntil([&] { return server.received(out::kCredentials); }));
    EXPECT_EQ(server.frames().back().payload, "alice:secret")
        << "an unasked-for sign-up result does not change whose login this is";
    EXPECT_EQ(server.frames()[1].code, out::kPong) << "the ping is answered at once";
    EXPECT_EQ(server.frames()[1].payload, "Pong");
    EXPECT_EQ(client.session->accounts().rowCount(), 2);
    EXPECT_TRUE(client.messages().contains(QStringLiteral("Maintenance at noon.")));
    EXPECT_EQ(client.prompter.asked.back().title, QStringLiteral("Attention!"));
    EXPECT_EQ(client.session->console().list(),
              (QStringList{QStringLiteral("one"), QStringLiteral("two")}));
    EXPECT_EQ(client.session->dispatcher().droppedUnknown(), 1);
    EXPECT_EQ(client.session->dispatcher().droppedUntilBuilt(), 1);
}

}  // namespace
}  // namespace tavren
