#pragma once

#include <QObject>

class QWidget;

namespace tavren {

class ChatConsole;
class ChatError;
class ChatLogin;
class Prompter;
class ServerSession;

// The windows of the connection, made on first use and kept: the login window, the error window
// and the server console, and the account dialogs. The main window's menu commands call the
// slots here.
class ConnectionWindows : public QObject {
    Q_OBJECT
  public:
    // `owner` is the main window: the windows are its children and close with it.
    ConnectionWindows(ServerSession& session, Prompter& prompter, QWidget* owner);

    ChatLogin& login();
    ChatError& errors();
    ChatConsole& console();

  public slots:
    void showLogin();
    // "loginoff": logs off when online, else shows the login window.
    void loginOrLogOff();
    // "nickswitch": logs off and shows the login window to pick another account.
    void switchAccount();
    // "currentnick"
    void showCurrentAccount();
    // "changepassword"
    void changePassword();
    // "mnueditemail": asks the server for the address first; the dialog opens on its answer.
    void changeEmail();
    // "console"
    void showConsole();
    void showErrors();

  private:
    void openEmailDialog(const QString& email);
    void placePairOnScreen(const QWidget& login);

    ServerSession& session_;
    Prompter& prompter_;
    QWidget* owner_;
    // Children of the owner, made on first use.
    ChatLogin* login_ = nullptr;
    ChatError* errors_ = nullptr;
    ChatConsole* console_ = nullptr;
};

}  // namespace tavren
