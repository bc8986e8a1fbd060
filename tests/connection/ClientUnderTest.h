#pragma once

#include <QStringList>
#include <QTemporaryDir>
#include <memory>

#include "config/Settings.h"
#include "config/SettingsStore.h"
#include "core/ConnectionOptions.h"
#include "core/ServerSession.h"
#include "support/ScriptedPrompter.h"

namespace tavren::test {

// One client's session layer with its own settings file and a scripted prompter, with short
// intervals so that time-outs and the reconnect countdown happen quickly.
class ClientUnderTest {
  public:
    explicit ClientUnderTest(ConnectionOptions options = fastOptions());

    static ConnectionOptions fastOptions();

    // Encrypted when `tlsWanted` is set (before pointing), plain otherwise.
    void pointAt(quint16 port, const QString& host = QStringLiteral("127.0.0.1"));
    void useProxy(quint16 proxyPort);
    // Saves an account in the login list and selects it.
    void selectAccount(const QString& name, const QString& password);
    // Points at `port` and clicks Login for the saved account alice:secret.
    void startLogin(quint16 port);

    // Everything written to the error window so far.
    QString errors() const { return session->errorLog().text(); }
    QStringList messages() const;  // texts of the message boxes shown so far

    QTemporaryDir dir;
    std::unique_ptr<SettingsStore> store;
    std::unique_ptr<Settings> settings;
    ScriptedPrompter prompter;
    std::unique_ptr<ServerSession> session;
    bool tlsWanted = false;
    int wentOffline = 0;
    int loginsAccepted = 0;
};

}  // namespace tavren::test
