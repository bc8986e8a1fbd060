// Through an HTTP proxy: a real tinyproxy to the real server, and a scripted one that misbehaves.
#include <gtest/gtest.h>

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTemporaryDir>
#include <memory>

#include "ClientUnderTest.h"
#include "FakePeer.h"
#include "TavrendProcess.h"
#include "Wait.h"

namespace tavren {
namespace {

using test::waitUntil;

// Debian's tinyproxy in the foreground on `port`, allowing CONNECT to `connectPort` only; null when
// it is not installed or does not start. Deleting the process kills it.
std::unique_ptr<QProcess> startTinyproxy(const QString& folder, quint16 port, quint16 connectPort) {
    const QString binary = QStandardPaths::findExecutable(QStringLiteral("tinyproxy"));
    QFile config(folder + QStringLiteral("/tinyproxy.conf"));
    if (binary.isEmpty() || !config.open(QIODevice::WriteOnly)) {
        return nullptr;
    }
    config.write(QStringLiteral("Port %1\nListen 127.0.0.1\nTimeout 30\nMaxClients 10\n"
                                "Allow 127.0.0.1\nConnectPort %2\nLogLevel Info\n")
                     .arg(port)
                     .arg(connectPort)
                     .toUtf8());
    config.close();
    auto proxy = std::make_unique<QProcess>();
    proxy->setProcessChannelMode(QProcess::MergedChannels);
    test::TavrendProcess::endWithParent(*proxy);
    proxy->start(binary, {QStringLiteral("-d"), QStringLiteral("-c"), config.fileName()});
    QString output;
    const bool up = waitUntil([&] {
        output += QString::fromUtf8(proxy->readAll());
        return output.contains(QStringLiteral("Accepting connections")) ||
               proxy->state() == QProcess::NotRunning;
    });
    return up && proxy->state() == QProcess::Running ? std::move(proxy) : nullptr;
}

TEST(ProxyTunnelTest, LogsInThroughARealHttpProxy) {
    QTemporaryDir dir;
    test::TavrendProcess server(dir.filePath(QStringLiteral("tavrend.db")));
    ASSERT_TRUE(server.start({QStringLiteral("--ping-interval"), QStringLiteral("0.1")}));
    ASSERT_TRUE(server.addAccount(QStringLiteral("Alice"), QStringLiteral("wonderland")));
    QTcpServer probe;  // a free port for the proxy
    probe.listen(QHostAddress::LocalHost, 0);
    const quint16 proxyPort = probe.serverPort();
    probe.close();
    const auto proxy = startTinyproxy(dir.path(), proxyPort, server.port());
    if (!proxy) {
        GTEST_SKIP() << "tinyproxy is not installed or did not start";
    }

    ConnectionOptions options = test::ClientUnderTest::fastOptions();
    options.tunnelHost = QStringLiteral("127.0.0.1");
    options.tunnelPort = server.port();
    test::ClientUnderTest client(options);
    client.useProxy(proxyPort);
    client.selectAccount(QStringLiteral("Alice"), QStringLiteral("wonderland"));
    client.session->login().clickLoginButton();
    ASSERT_TRUE(waitUntil([&] { return client.loginsAccepted == 1; }))
        << client.errors().toStdString() << server.log().toStdString();
    EXPECT_TRUE(client.messages().isEmpty());
    // Pings come through the tunnel too.
    test::runEventsFor(6 * options.watchdogIntervalMs);
    EXPECT_TRUE(client.session->online());
    EXPECT_FALSE(client.session->connection().encrypted());

    // Encrypted, TLS runs inside the tunnel, checked against the server's name and port (not
    // the proxy's); the proxy sees only the CONNECT in the clear.
    client.session->login().logOff();
    client.settings->setKnownServer(ServerTrust::keyFor(options.tunnelHost, options.tunnelPort),
                                    server.fingerprint());
    client.tlsWanted = true;
    client.useProxy(proxyPort);
    client.session->login().clickLoginButton();
    ASSERT_TRUE(waitUntil([&] { return client.loginsAccepted == 2; }))
        << client.errors().toStdString() << server.log().toStdString();
    EXPECT_TRUE(client.session->connection().encrypted());
    EXPECT_TRUE(client.messages().isEmpty());
    test::runEventsFor(3 * options.watchdogIntervalMs);
    EXPECT_TRUE(client.session->online());
}

TEST(ProxyTunnelTest, TheTunnelRequestIsExactAndAHangUpOrARefusalIsReported) {
    test::FakePeer proxy;
    proxy.setRawOnly(true);
    test::ClientUnderTest client;
    client.useProxy(proxy.port());
    client.selectAccount(QStringLiteral("alice"), QStringLiteral("secret"));
    LoginFlow& login = client.session->login();

    // A proxy that hangs up before answering is an abort.
    login.clickLoginButton();
    ASSERT_TRUE(waitUntil([&] { return !proxy.raw().isEmpty(); }));
    proxy.closeCurrent();
    ASSERT_TRUE(waitUntil([&] { return !client.messages().isEmpty(); }));
    EXPECT_EQ(client.messages(),
              QStringList{QStringLiteral("Connection Abort, Please try again...")});
    EXPECT_EQ(login.button().caption, QStringLiteral("&Login"));

    login.clickLoginButton();
    const QByteArray request = QByteArrayLiteral("CONNECT ") +
                               client.session->options().tunnelHost.toLatin1() + ':' +
                               QByteArray::number(client.session->options().tunnelPort) +
                               QByteArrayLiteral(" HTTP/1.0\n\n");
    ASSERT_TRUE(waitUntil([&] { return proxy.connections() == 2 && proxy.raw() == request; }))
        << proxy.raw().toStdString();
    EXPECT_EQ(login.statusText(), QStringLiteral("Connection Pending"));
    proxy.sendRaw(QByteArrayLiteral("HTTP/1.0 403 Forbidden\r\nServer: test\r\n\r\n"));
    ASSERT_TRUE(waitUntil(
        [&] { return client.errors().contains(QStringLiteral("Proxy Connections error!")); }));
    EXPECT_TRUE(
        client.errors().contains(QStringLiteral(" -> Proxy Host Message: HTTP/1.0 403 Forbidden")));
    EXPECT_EQ(login.button().caption, QStringLiteral("&Login"));
    EXPECT_EQ(client.session->link().socketState(), QAbstractSocket::UnconnectedState);
    EXPECT_EQ(proxy.frames().size(), 0u) << "no frame goes to a proxy that refused";
}

}  // namespace
}  // namespace tavren
