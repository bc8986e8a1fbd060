#include <gtest/gtest.h>

#include "ClientUnderTest.h"
#include "FakePeer.h"
#include "Wait.h"
#include "core/protocol/Catalogue.h"

namespace tavren {
namespace {

using test::waitUntil;
namespace out = protocol::client_to_server;

const QString kTimedOut = QStringLiteral(
    "Server: You have been timed out due to no ping requests, Auto Relogin Enabled..");

TEST(FakeServerTest, ASilentServerTimesTheClientOutOnceAndItReconnects) {
    test::FakePeer server;
    server.setResponder(&test::FakePeer::answerLoginWithoutPings);
    test::ClientUnderTest client;
    client.pointAt(server.port());
    client.selectAccount(QStringLiteral("alice"), QStringLiteral("secret"));
    QStringList paneLines;
    QObject::connect(&client.session->connection(), &ServerConnection::statusLine,
                     [&](const QString& line) { paneLines << line; });

    client.session->login().clickLoginButton();
    ASSERT_TRUE(waitUntil([&] { return client.loginsAccepted == 1; }));
    EXPECT_TRUE(server.received(out::kMailReceive)) << "a login asks for the mail";

    // No pings: five watchdog intervals later the client gives up, then logs in again.
    ASSERT_TRUE(waitUntil([&] { return server.connections() == 2; }));
    EXPECT_EQ(client.wentOffline, 1);
    EXPECT_EQ(paneLines, QStringList{kTimedOut});
    EXPECT_EQ(client.errors().count(kTimedOut), 1);
    EXPECT_TRUE(client.messages().isEmpty());
    ASSERT_TRUE(waitUntil([&] { return client.loginsAccepted == 2; }));
}

TEST(FakeServerTest, PingsAreAnsweredEvenBeforeLogin) {
    test::FakePeer server;
    server.setResponder([](test::FakePeer& peer, const protocol::Frame& frame) {
        if (frame.code == out::kVersionBeforeLogin) {
            peer.send(protocol::server_to_client::kPing, "Ping");
        }
    });
    test::ClientUnderTest client;
    client.pointAt(server.port());
    client.selectAccount(QStringLiteral("alice"), QStringLiteral("secret"));
    client.session->login().clickLoginButton();
    ASSERT_TRUE(waitUntil([&] { return server.received(out::kPong); }));
    EXPECT_EQ(server.frames().back().payload, "Pong");
}

TEST(FakeServerTest, HostileFramesEndTheLinkWithAnErrorLineAndNoCrash) {
    struct Case {
        const char* what;
        QByteArray bytes;
        QString expected;
    };
    const std::vector<Case> cases = {
        {"not a frame", QByteArrayLiteral("GET / HTTP/1.1\r\n\r\n"), QStringLiteral("lead byte")},
        {"wrong tag", QByteArray::fromHex("2A15000000000001000A"), QStringLiteral("tag byte")},
        {"huge length", QByteArray::fromHex("2A147FFFFFF60001000A"),
         QStringLiteral("payload length")},
        {"code out of range", QByteArray::fromHex("2A1400000000FFFF0001"),
         QStringLiteral("command code")},
    };
    for (const Case& hostile : cases) {
        test::FakePeer server;
        server.setResponder([&](test::FakePeer& peer, const protocol::Frame& frame) {
            // After a good start, so that the client is logged in when the garbage comes.
            test::FakePeer::answerLoginWithoutPings(peer, frame);
            if (frame.code == out::kMailReceive) {
                peer.send(protocol::server_to_client::kOnlineCount, "3");
                peer.sendRaw(hostile.bytes);
                peer.send(protocol::server_to_client::kScore, "never shown");
            }
        });
        test::ClientUnderTest client;
        QStringList scores;
        QObject::connect(client.session.get(), &ServerSession::scoreChanged,
                         [&](const QString& text) { scores << text; });
        client.pointAt(server.port());
        client.selectAccount(QStringLiteral("alice"), QStringLiteral("secret"));
        client.session->login().clickLoginButton();

        ASSERT_TRUE(waitUntil([&] { return client.wentOffline == 1; })) << hostile.what;
        EXPECT_TRUE(client.errors().contains(QStringLiteral("Frame refused"))) << hostile.what;
        EXPECT_TRUE(client.errors().contains(hostile.expected)) << hostile.what;
        EXPECT_FALSE(client.session->online());
        EXPECT_EQ(client.session->link().socketState(), QAbstractSocket::UnconnectedState);
        EXPECT_TRUE(scores.isEmpty()) << "nothing after the bad bytes is dispatched";
        EXPECT_TRUE(client.messages().isEmpty()) << hostile.what;
    }
}

TEST(FakeServerTest, ServerNoticesAndResultsOutsideTheScriptAreShownNotTrusted) {
    test::FakePeer server;
    server.setResponder([](test::FakePeer& peer, const protocol::Frame& frame) {
        if (frame.code == out::kVersionBeforeLogin) {
            // Results nobody asked for, a notice, a list and frames of features not built yet.
            peer.send(protocol::CodePair{3, 7}, "Registration Success!");
            peer.send(protocol::CodePair{4, 3}, "Maintenance at noon.");
            peer.send(protocol::server_to_client::kListUpdate, "one\x01two\x01");
            peer.send(protocol::CodePair{2, 5}, "General:@bob");
            peer.send(protocol::CodePair{5, 1}, "");
            peer.send(protocol::server_to_client::kHello, "fake");
        }
    });
    test::ClientUnderTest client;
    client.pointAt(server.port());
    client.selectAccount(QStringLiteral("alice"), QStringLiteral("secret"));
    client.session->login().clickLoginButton();
    ASSERT_TRUE(waitUntil([&] { return server.received(out::kCredentials); }));

    EXPECT_EQ(server.frames().back().payload, "alice:secret")
        << "an unasked-for sign-up result does not change whose login this is";
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

namespace tavren {
namespace {

TEST(FakeServerTest, AClosingNoticeMeansNoAutomaticReconnect) {
    test::FakePeer server;
    server.setResponder([](test::FakePeer& peer, const protocol::Frame& frame) {
        test::FakePeer::answerLoginWithoutPings(peer, frame);
        if (frame.code == out::kMailReceive) {
            peer.send(protocol::CodePair{4, 1},
                      "You have been logged out: your account logged in from another place.");
            peer.closeCurrent();
        }
    });
    test::ClientUnderTest client;
    client.pointAt(server.port());
    client.selectAccount(QStringLiteral("alice"), QStringLiteral("secret"));
    client.session->login().clickLoginButton();
    ASSERT_TRUE(waitUntil([&] { return client.wentOffline == 1; }));

    EXPECT_TRUE(client.messages().contains(
        QStringLiteral("You have been logged out: your account logged in from another place.")));
    EXPECT_TRUE(client.errors().contains(
        QStringLiteral("Server: You have been disconnected from the server.")));
    EXPECT_EQ(client.session->login().button().caption, QStringLiteral("&Login"));
    test::runEventsFor(1000);
    EXPECT_EQ(server.connections(), 1)
        << "two places logging in must not throw each other out forever";
}

}  // namespace
}  // namespace tavren
