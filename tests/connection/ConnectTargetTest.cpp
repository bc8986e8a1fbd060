// Where the client connects: keywords and numbers in the settings, and what is wrong with them.
#include <gtest/gtest.h>

#include "ClientUnderTest.h"
#include "core/ConnectTarget.h"

namespace tavren {
namespace {

TEST(ConnectTargetTest, KeywordsResolveInAnyLetterCaseAndUnusablePortsToZero) {
    ConnectionOptions options = ConnectionOptions::deployment();
    options.defaultServers = {QStringLiteral("one.example"), QStringLiteral("two.example")};
    EXPECT_EQ(ConnectTarget::resolvePort(QStringLiteral("{DEFAULT PORT}"), options), 5678);
    EXPECT_EQ(ConnectTarget::resolvePort(QStringLiteral("{Default Port}"), options), 5678);
    EXPECT_EQ(ConnectTarget::resolvePort(QStringLiteral("6000"), options), 6000);
    for (const char* unusable : {"0", "abc", "", "65536", "-1", "12abc"}) {
        EXPECT_EQ(ConnectTarget::resolvePort(QString::fromLatin1(unusable), options), 0)
            << unusable;
    }
    EXPECT_EQ(ConnectTarget::resolveHost(QStringLiteral("{DEFAULT SERVER #2}"), options),
              QStringLiteral("two.example"));
    EXPECT_EQ(ConnectTarget::resolveHost(QStringLiteral("{default server #3}"), options),
              QStringLiteral("{default server #3}"));
    EXPECT_EQ(ConnectTarget::resolveHost(QStringLiteral(" chat.example.org "), options),
              QStringLiteral("chat.example.org"));
}

TEST(ConnectTargetTest, UnusableSettingsAreNamedPortFirstAndNothingConnects) {
    struct Case {
        const char* host;
        const char* port;
        const char* proxyHost;  // null: no proxy
        const char* proxyPort;
        const char* problem;
    };
    for (const Case& unusable : {
             Case{"host", "0", nullptr, nullptr, "Invalid Server Port Please Check Settings."},
             Case{"host", "abc", nullptr, nullptr, "Invalid Server Port Please Check Settings."},
             Case{"", "abc", nullptr, nullptr, "Invalid Server Port Please Check Settings."},
             Case{"  ", "5678", nullptr, nullptr, "Invalid Server Address Please Check Settings."},
             // In proxy mode the server's fields are not even read.
             Case{"", "abc", "proxy.example", "eighty",
                  "Invalid Proxy Port Please Check Settings."},
             Case{"", "abc", "proxy.example", "", "Invalid Proxy Port Please Check Settings."},
             Case{"", "abc", "", "8080", "Invalid Proxy Address Please Check Settings."},
         }) {
        test::ClientUnderTest client;
        SettingsValues values = client.settings->values();
        values.serverHost = QString::fromLatin1(unusable.host);
        values.serverPort = QString::fromLatin1(unusable.port);
        values.useProxy = unusable.proxyHost != nullptr;
        values.proxyHost = QString::fromLatin1(unusable.proxyHost);
        values.proxyPort = QString::fromLatin1(unusable.proxyPort);
        client.settings->setValues(values);
        client.selectAccount(QStringLiteral("alice"), QStringLiteral("secret"));
        client.session->login().clickLoginButton();
        EXPECT_EQ(client.messages(), QStringList{QString::fromLatin1(unusable.problem)})
            << unusable.host << "|" << unusable.port;
        EXPECT_EQ(client.session->link().socketState(), QAbstractSocket::UnconnectedState);
        EXPECT_EQ(client.session->login().button().caption, QStringLiteral("&Login"));
    }

    SettingsValues proxy;
    proxy.serverPort = QStringLiteral("abc");
    proxy.useProxy = true;
    proxy.proxyHost = QStringLiteral("proxy.example");
    proxy.proxyPort = QStringLiteral("8080");
    const ConnectTarget viaProxy =
        ConnectTarget::fromSettings(proxy, ConnectionOptions::deployment());
    EXPECT_TRUE(viaProxy.valid() && viaProxy.viaProxy);
    EXPECT_EQ(viaProxy.host + QLatin1Char(':') + QString::number(viaProxy.port),
              QStringLiteral("proxy.example:8080"));
    // Untouched settings ask the local server directly.
    const ConnectTarget fresh =
        ConnectTarget::fromSettings(SettingsValues{}, ConnectionOptions::deployment());
    EXPECT_TRUE(fresh.valid() && !fresh.viaProxy);
    EXPECT_EQ(fresh.host + QLatin1Char(':') + QString::number(fresh.port),
              QStringLiteral("127.0.0.1:5678"));
}

}  // namespace
}  // namespace tavren
