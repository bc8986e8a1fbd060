#pragma once

#include <QObject>
#include <QString>

#include "core/AccountRequests.h"
#include "core/ConnectionOptions.h"
#include "core/ErrorLog.h"
#include "core/FloodMeters.h"
#include "core/LoginFlow.h"
#include "core/SavedAccounts.h"
#include "core/ServerConnection.h"
#include "core/ServerConsole.h"
#include "core/ServerDispatcher.h"
#include "core/ServerLink.h"

namespace tavren {

class Prompter;
class Settings;

// Everything the client needs to be on the server, in one object: the link, the connection and
// its watchdog, the dispatcher with the core messages routed, the login flow with the saved
// accounts, the account requests, the error log and the server console. Windows observe it;
// later features add their handlers with dispatcher().route() and send with link().SendPacket().
class ServerSession : public QObject {
    Q_OBJECT
  public:
    ServerSession(Settings& settings, Prompter& prompter,
                  const ConnectionOptions& options = ConnectionOptions::deployment(),
                  QObject* parent = nullptr);

    ServerLink& link() { return link_; }
    ServerConnection& connection() { return connection_; }
    ServerDispatcher& dispatcher() { return dispatcher_; }
    LoginFlow& login() { return login_; }
    SavedAccounts& accounts() { return accounts_; }
    AccountRequests& accountRequests() { return accountRequests_; }
    ErrorLog& errorLog() { return errorLog_; }
    ServerConsole& console() { return console_; }
    FloodMeters& floodMeters() { return floodMeters_; }
    ConnectedClock& clock() { return connection_.clock(); }
    const ConnectionOptions& options() const { return options_; }

    bool online() const { return login_.online(); }
    // The text of the "Current Account.." command.
    QString currentAccountText() const;

  signals:
    void onlineChanged(bool online);
    // "Tavren Chat Online (name)" or "Tavren Chat Offline (??)".
    void captionChanged(const QString& caption);
    // Status-bar texts: "Online: n" and "Tavren Score: n".
    void onlineCountChanged(const QString& text);
    void scoreChanged(const QString& text);
    // The server asks to clear the main window's news pane (1, 2) or the news window (1, 7).
    void paneClearRequested();
    void newsWindowClearRequested();
    // One news item (4, 3): title U+0001 text.
    void newsItemArrived(const QString& payload);
    // The session settings after login: the member's name and the server's default room.
    void sessionSettingsArrived(const QString& name, const QString& defaultRoom);
    // How full the flood meters may get and how fast they drain.
    void floodLimitsChanged(int maximum, int drainIntervalMs);
    // A notice from the server (shown with the title "Attention!").
    void noticeArrived(const QString& text);
    // The message of the day, unless the member asked not to see it.
    void messageOfTheDay(const QString& text);

  private:
    void routeCoreMessages();

    Settings& settings_;
    ConnectionOptions options_;
    FloodMeters floodMeters_;
    ErrorLog errorLog_;
    ServerLink link_;
    ServerConnection connection_;
    ServerDispatcher dispatcher_;
    SavedAccounts accounts_;
    LoginFlow login_;
    AccountRequests accountRequests_;
    ServerConsole console_;
};

}  // namespace tavren
