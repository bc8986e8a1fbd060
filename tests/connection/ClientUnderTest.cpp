#include "ClientUnderTest.h"

namespace tavren::test {

ClientUnderTest::ClientUnderTest(ConnectionOptions options)
    : store(std::make_unique<SettingsStore>(dir.filePath(QStringLiteral("settings.ini")))),
      settings(std::make_unique<Settings>(*store, dir.path(), nullptr)),
      session(std::make_unique<ServerSession>(*settings, prompter, options)) {
    QObject::connect(&session->connection(), &ServerConnection::wentOffline, session.get(),
                     [this] { ++wentOffline; });
    QObject::connect(&session->login(), &LoginFlow::loginAccepted, session.get(),
                     [this] { ++loginsAccepted; });
}

ConnectionOptions ClientUnderTest::fastOptions() {
    ConnectionOptions options = ConnectionOptions::deployment();
    options.watchdogIntervalMs = 400;
    options.connectTimeoutMs = 5000;
    options.reconnectCountdown = 3;
    options.countdownTickMs = 100;
    options.statusRefreshMs = 50;
    return options;
}

void ClientUnderTest::pointAt(quint16 port, const QString& host) {
    SettingsValues values = settings->values();
    values.useProxy = false;
    values.serverHost = host;
    values.serverPort = QString::number(port);
    // Plain unless a test turns encryption on (useTls): most tests are about other things,
    // and the scripted fake server speaks only the plain protocol.
    values.tls = tlsWanted;
    settings->setValues(values);
}

void ClientUnderTest::useProxy(quint16 proxyPort) {
    SettingsValues values = settings->values();
    values.useProxy = true;
    values.proxyHost = QStringLiteral("127.0.0.1");
    values.proxyPort = QString::number(proxyPort);
    values.tls = tlsWanted;
    // Ignored in proxy mode: the tunnel always asks for the deployment's server.
    values.serverHost = QStringLiteral("no-such-host.invalid");
    values.serverPort = QStringLiteral("1");
    settings->setValues(values);
}

void ClientUnderTest::selectAccount(const QString& name, const QString& password) {
    SavedAccounts& accounts = session->accounts();
    const int row = accounts.findRow(name);
    session->login().select(row < 0 ? accounts.add(name, password)
                                    : accounts.modify(row, name, password));
}

void ClientUnderTest::startLogin(quint16 port) {
    pointAt(port);
    selectAccount(QStringLiteral("alice"), QStringLiteral("secret"));
    session->login().clickLoginButton();
}

QStringList ClientUnderTest::messages() const {
    QStringList texts;
    for (const auto& asked : prompter.asked) {
        if (asked.kind == QLatin1String("message")) {
            texts << asked.text;
        }
    }
    return texts;
}

}  // namespace tavren::test
