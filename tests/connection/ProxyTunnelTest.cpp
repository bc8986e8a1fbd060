#include <gtest/gtest.h>

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTemporaryDir>

#include "ClientUnderTest.h"
#include "FakePeer.h"
#include "TavrendProcess.h"
#include "Wait.h"

namespace tavren {
namespace {

using test::waitUntil;

quint16 freePort() {
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    return probe.serverPort();
}

// Debian's tinyproxy in the foreground with a configuration that allows CONNECT to one port.
class Tinyproxy {
  public:
    bool start(const QString& folder, quint16 connectPort) {
        const QString binary = QStandardPaths::findExecutable(QStringLiteral("tinyproxy"));
        if (binary.isEmpty()) {
            return false;
        }
        port_ = freePort();
        QFile config(folder + QStringLiteral("/tinyproxy.conf"));
        if (!config.open(QIODevice::WriteOnly)) {
            return false;
        }
        config.write(QStringLiteral("Port %1\nListen 127.0.0.1\nTimeout 30\nMaxClients 10\n"
                                    "Allow 127.0.0.1\nConnectPort %2\nLogLevel Info\n")
                         .arg(port_)
                         .arg(connectPort)
                         .toUtf8());
        config.close();
        process_.setProcessChannelMode(QProcess::MergedChannels);
        test::TavrendProcess::endWithParent(process_);
        process_.start(binary, {QStringLiteral("-d"), QStringLiteral("-c"), config.fileName()});
        if (!process_.waitForStarted(5000)) {
            return false;
        }
        QString output;
        return waitUntil([&] {
                   output += QString::fromUtf8(process_.readAll());
                   return output.contains(QStringLiteral("Accepting connections")) ||
                          process_.state() == QProcess::NotRunning;
               }) &&
               process_.state() == QProcess::Running;
    }
    ~Tinyproxy() {
        process_.terminate();
        if (!process_.waitForFinished(5000)) {
            process_.kill();
            process_.waitForFinished(2000);
        }
    }
    quint16 port() const { return port_; }

  private:
    QProcess process_;
    quint16 port_ = 0;
};

TEST(ProxyTunnelTest, LogsInThroughARealHttpProxy) {
    QTemporaryDir dir;
    test::TavrendProcess server(dir.filePath(QStringLiteral("tavrend.db")));
    ASSERT_TRUE(server.start({QStringLiteral("--ping-interval"), QStringLiteral("0.1")}));
    ASSERT_TRUE(server.addAccount(QStringLiteral("Alice"), QStringLiteral("wonderland")));
    Tinyproxy proxy;
    if (!proxy.start(dir.path(), server.port())) {
        GTEST_SKIP() << "tinyproxy is not installed or did not start";
    }

    ConnectionOptions options = test::ClientUnderTest::fastOptions();
    options.tunnelHost = QStringLiteral("127.0.0.1");
    options.tunnelPort = server.port();
    test::ClientUnderTest client(options);
    client.useProxy(proxy.port());
    client.selectAccount(QStringLiteral("Alice"), QStringLiteral("wonderland"));
    client.session->login().clickLoginButton();
    ASSERT_TRUE(waitUntil([&] { return client.loginsAccepted == 1; }))
        << client.errors().toStdString() << server.log().toStdString();
    EXPECT_TRUE(client.messages().isEmpty());
    // Pings come through the tunnel too.
    test::runEventsFor(6 * options.watchdogIntervalMs);
    EXPECT_TRUE(client.session->online());
}

TEST(ProxyTunnelTest, TheTunnelRequestIsExactAndARefusalIsReported) {
    test::FakePeer proxy;
    proxy.setRawOnly(true);
    test::ClientUnderTest client;
    client.useProxy(proxy.port());
    client.selectAccount(QStringLiteral("alice"), QStringLiteral("secret"));
    client.session->login().clickLoginButton();

    const QByteArray request = QByteArrayLiteral("CONNECT ") +
                               client.session->options().tunnelHost.toLatin1() + ':' +
                               QByteArray::number(client.session->options().tunnelPort) +
                               QByteArrayLiteral(" HTTP/1.0\n\n");
    ASSERT_TRUE(waitUntil([&] { return proxy.raw() == request; })) << proxy.raw().toStdString();
    EXPECT_EQ(client.session->login().statusText(), QStringLiteral("Connection Pending"));

    proxy.sendRaw(QByteArrayLiteral("HTTP/1.0 403 Forbidden\r\nServer: test\r\n\r\n"));
    ASSERT_TRUE(waitUntil(
        [&] { return client.errors().contains(QStringLiteral("Proxy Connections error!")); }));
    EXPECT_TRUE(
        client.errors().contains(QStringLiteral(" -> Proxy Host Message: HTTP/1.0 403 Forbidden")));
    EXPECT_EQ(client.session->login().button().caption, QStringLiteral("&Login"));
    EXPECT_EQ(client.session->link().socketState(), QAbstractSocket::UnconnectedState);
    EXPECT_EQ(proxy.frames().size(), 0u) << "no frame goes to a proxy that refused";
}

TEST(ProxyTunnelTest, AProxyThatHangsUpBeforeAnsweringIsAnAbort) {
    test::FakePeer proxy;
    proxy.setRawOnly(true);
    test::ClientUnderTest client;
    client.useProxy(proxy.port());
    client.selectAccount(QStringLiteral("alice"), QStringLiteral("secret"));
    client.session->login().clickLoginButton();
    ASSERT_TRUE(waitUntil([&] { return !proxy.raw().isEmpty(); }));
    proxy.closeCurrent();
    ASSERT_TRUE(waitUntil([&] { return !client.messages().isEmpty(); }));
    EXPECT_EQ(client.messages(),
              QStringList{QStringLiteral("Connection Abort, Please try again...")});
    EXPECT_EQ(client.session->login().button().caption, QStringLiteral("&Login"));
}

}  // namespace
}  // namespace tavren
