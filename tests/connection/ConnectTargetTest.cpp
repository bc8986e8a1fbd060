#include <gtest/gtest.h>

#include "ClientUnderTest.h"
#include "core/ConnectTarget.h"
#include "core/ConnectionFailure.h"

namespace tavren {
namespace {

ConnectionOptions deploymentWithHosts() {
    ConnectionOptions options = ConnectionOptions::deployment();
    options.defaultServers = {QStringLiteral("one.example"), QStringLiteral("two.example"),
                              QStringLiteral("three.example"), QStringLiteral("four.example")};
    return options;
}

SettingsValues serverValues(const char* host, const char* port) {
    SettingsValues values;
    values.serverHost = QString::fromLatin1(host);
    values.serverPort = QString::fromLatin1(port);
    return values;
}

TEST(ConnectTargetTest, KeywordsAndPortsResolveWhateverTheirLetterCase) {
    const ConnectionOptions options = deploymentWithHosts();
    EXPECT_EQ(ConnectTarget::resolvePort(QStringLiteral("{DEFAULT PORT}"), options), 5678);
    EXPECT_EQ(ConnectTarget::resolvePort(QStringLiteral("{Default Port}"), options), 5678);
    EXPECT_EQ(ConnectTarget::resolvePort(QStringLiteral("6000"), options), 6000);
    for (const char* unusable : {"0", "abc", "", "65536", "-1", "12abc"}) {
        EXPECT_EQ(ConnectTarget::resolvePort(QString::fromLatin1(unusable), options), 0)
            << unusable;
    }
    EXPECT_EQ(ConnectTarget::resolveHost(QStringLiteral("{Default Server #1}"), options),
              QStringLiteral("one.example"));
    EXPECT_EQ(ConnectTarget::resolveHost(QStringLiteral("{DEFAULT SERVER #4}"), options),
              QStringLiteral("four.example"));
    EXPECT_EQ(ConnectTarget::resolveHost(QStringLiteral("{default server #5}"), options),
              QStringLiteral("{default server #5}"));
    EXPECT_EQ(ConnectTarget::resolveHost(QStringLiteral(" chat.example.org "), options),
              QStringLiteral("chat.example.org"));
}

TEST(ConnectTargetTest, TheBuildsFirstDefaultServerIsTheLocalOne) {
    const ConnectionOptions options = ConnectionOptions::deployment();
    const ConnectTarget target = ConnectTarget::fromSettings(SettingsValues{}, options);
    EXPECT_TRUE(target.valid());
    EXPECT_EQ(target.host, QStringLiteral("127.0.0.1"));
    EXPECT_EQ(target.port, 5678);
    EXPECT_FALSE(target.viaProxy);
}

TEST(ConnectTargetTest, UnusableSettingsNameTheProblemPortBeforeAddress) {
    const ConnectionOptions options = deploymentWithHosts();
    const QString badPort = QStringLiteral("Invalid Server Port Please Check Settings.");
    EXPECT_EQ(ConnectTarget::fromSettings(serverValues("host", "0"), options).problem, badPort);
    EXPECT_EQ(ConnectTarget::fromSettings(serverValues("host", "abc"), options).problem, badPort);
    EXPECT_EQ(ConnectTarget::fromSettings(serverValues("", "abc"), options).problem, badPort);
    EXPECT_EQ(ConnectTarget::fromSettings(serverValues("  ", "5678"), options).problem,
              QStringLiteral("Invalid Server Address Please Check Settings."));

    SettingsValues proxy = serverValues("", "abc");  // ignored in proxy mode
    proxy.useProxy = true;
    proxy.proxyHost = QStringLiteral("proxy.example");
    proxy.proxyPort = QStringLiteral("8080");
    const ConnectTarget viaProxy = ConnectTarget::fromSettings(proxy, options);
    EXPECT_TRUE(viaProxy.valid());
    EXPECT_TRUE(viaProxy.viaProxy);
    EXPECT_EQ(viaProxy.host, QStringLiteral("proxy.example"));
    EXPECT_EQ(viaProxy.port, 8080);
    proxy.proxyPort = QStringLiteral("eighty");
    EXPECT_EQ(ConnectTarget::fromSettings(proxy, options).problem,
              QStringLiteral("Invalid Proxy Port Please Check Settings."));
    proxy.proxyPort = QString();
    EXPECT_EQ(ConnectTarget::fromSettings(proxy, options).problem,
              QStringLiteral("Invalid Proxy Port Please Check Settings."));
    proxy.proxyPort = QStringLiteral("8080");
    proxy.proxyHost = QString();
    EXPECT_EQ(ConnectTarget::fromSettings(proxy, options).problem,
              QStringLiteral("Invalid Proxy Address Please Check Settings."));
}

TEST(ConnectTargetTest, InvalidSettingsAreReportedWithoutTouchingTheNetwork) {
    for (const char* port : {"0", "abc"}) {
        test::ClientUnderTest client;
        client.pointAt(1);
        SettingsValues values = client.settings->values();
        values.serverPort = QString::fromLatin1(port);
        client.settings->setValues(values);
        client.selectAccount(QStringLiteral("alice"), QStringLiteral("secret"));

        client.session->login().clickLoginButton();

        EXPECT_EQ(client.messages(),
                  QStringList{QStringLiteral("Invalid Server Port Please Check Settings.")});
        EXPECT_EQ(client.session->link().socketState(), QAbstractSocket::UnconnectedState);
        EXPECT_EQ(client.session->connection().phase(), ServerConnection::Phase::Closed);
        EXPECT_EQ(client.session->login().button().caption, QStringLiteral("&Login"));
    }
}

TEST(ConnectTargetTest, SocketFailuresReadAsTheUsersSentences) {
    using S = QAbstractSocket;
    EXPECT_EQ(ConnectionFailure::knownMessage(S::ConnectionRefusedError, true),
              QStringLiteral("Server is Offline. Please try again later.."));
    EXPECT_EQ(ConnectionFailure::knownMessage(S::SocketTimeoutError, true),
              QStringLiteral("Server could not be reached, please try again later.."));
    EXPECT_EQ(ConnectionFailure::knownMessage(S::NetworkError, false),
              QStringLiteral("Server could not be reached, please try again later.."));
    EXPECT_EQ(
        ConnectionFailure::knownMessage(S::HostNotFoundError, true),
        QStringLiteral("No Server was found at this address. Please try alternative server.."));
    EXPECT_EQ(ConnectionFailure::knownMessage(S::RemoteHostClosedError, true),
              QStringLiteral("Connection Abort, Please try again..."));
    // Closed by the server once up is not a failure to connect.
    EXPECT_TRUE(ConnectionFailure::knownMessage(S::RemoteHostClosedError, false).isEmpty());
    EXPECT_TRUE(ConnectionFailure::knownMessage(S::SslHandshakeFailedError, true).isEmpty());
    EXPECT_EQ(ConnectionFailure::detail(QStringLiteral("Odd failure"), QStringLiteral("h"), 7),
              QStringLiteral("Odd failure\r\nHost: h\r\nPort: 7"));
}

}  // namespace
}  // namespace tavren
