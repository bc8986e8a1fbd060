#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

#include "core/ConnectionOptions.h"
#include "core/LoginButton.h"
#include "core/ServerMessage.h"

namespace tavren {

class Prompter;
class SavedAccounts;
class ServerConnection;
class ServerLink;
class Settings;

// The session side of the login window: which saved account is selected, what the login button
// says and does, the login and sign-up handshakes with the server, the login and sign-up results
// and the auto-reconnect countdown (Timer3). The window only shows this state and forwards
// clicks, so every flow here runs headless in tests.
//
// Login:   (1, 6) version -> hello (1, 4) -> (1, 1) name ":" password -> account data (1, 5)
//          -> (1, 5) "OK" -> accepted (1, 6) -> (1, 11) "Mail-Recv".
// Sign-up: (1, 4) version -> the sign-up dialog -> (3, 1) name ":" password ":" e-mail ->
//          group 3 result; on success the new account logs in on the same connection.
class LoginFlow : public QObject {
    Q_OBJECT
  public:
    enum class Mode { Normal, New };

    LoginFlow(Settings& settings, Prompter& prompter, ServerLink& link,
              ServerConnection& connection, SavedAccounts& accounts,
              const ConnectionOptions& options, QObject* parent = nullptr);

    // Saved-account selection (row 0 is "*new_user*").
    int selectedRow() const { return selectedRow_; }
    void select(int row);

    LoginButton button() const { return button_; }
    void clickLoginButton();
    // Presses "&Login" when the user asked to log in at start-up and has an account selected.
    void autoLoginIfWanted();
    // The user ends the session (or gives up connecting): no auto-reconnect after this.
    void logOff();

    // The login window's status line, from the link's state (refreshed by the window's Timer2).
    QString statusText() const;
    static QString clientVersion();
    static QString versionText() { return QStringLiteral("Version: ") + clientVersion(); }

    Mode mode() const { return mode_; }
    bool online() const { return online_; }
    // The account this connection logs in with, copied from the selection at each connect.
    QString userName() const { return userName_; }
    QString helloText() const { return helloText_; }
    QString accountData() const { return accountData_; }
    QString onlineCaption() const;

    // The sign-up dialog's fields: the first problem found, or an empty string.
    static QString checkSignUp(const QString& name, const QString& password,
                               const QString& confirmation, const QString& email);
    void submitSignUp(const QString& name, const QString& password, const QString& email);
    void cancelSignUp();
    QString pendingSignUpName() const { return signUpName_; }

    // Server messages, routed here by the dispatcher.
    void onHello(const ServerMessage& message);
    void onUpdateNotice(const ServerMessage& message);
    void onAccountData(const ServerMessage& message);
    void onLoginAccepted(const ServerMessage& message);
    void onSessionSettings(const ServerMessage& message);
    void onLoginResult(const ServerMessage& message);

    // One tick of Timer3; public so that tests need not wait.
    void countdownTick();
    bool countdownRunning() const { return countdown_.isActive(); }

  signals:
    void buttonChanged(const LoginButton& button);
    void selectionChanged(int row);
    // The connection for a new member is up: show the sign-up dialog.
    void signUpRequested();
    // The user already has an account: offer to add it to the list.
    void addAccountRequested();
    // Signing up closes the conversations of the previous member.
    void conversationWindowsClosing();
    void loginAccepted();
    void onlineChanged(bool online);
    void captionChanged(const QString& caption);
    void nicknameChanged(const QString& nickname);
    // The user wants the newer client the server told about.
    // `sha256` is the checksum the notice carried (lower-case hex), empty when it had none.
    void updateDownloadRequested(const QString& url, const QString& version,
                                 const QString& sha256);

  private:
    void pressLogin();
    void setButton(const LoginButton& button);
    void resetButton();
    void sendCredentials();
    void setOnline(bool online);
    void onLinkReady();
    void onWentOffline();
    void disarm();

    Settings& settings_;
    Prompter& prompter_;
    ServerLink& link_;
    ServerConnection& connection_;
    SavedAccounts& accounts_;
    ConnectionOptions options_;
    int selectedRow_ = 0;
    LoginButton button_;
    Mode mode_ = Mode::Normal;
    bool online_ = false;
    QString userName_;
    QString password_;
    QString helloText_;
    QString accountData_;
    QString signUpName_;
    QString signUpPassword_;
    QTimer countdown_;
    int remaining_ = 0;
};

}  // namespace tavren
