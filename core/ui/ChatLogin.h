#pragma once

#include <QTimer>
#include <QWidget>

class QLabel;
class QPushButton;
class QTreeWidget;

namespace tavren {

class LoginFlow;
class Prompter;
class SavedAccounts;
class ServerSession;
class SignUpDialog;
struct LoginButton;

// The login window: the saved accounts (ListView1) with "*new_user*", the login button
// (XPButton4), the connection status (Label3, refreshed by Timer2) and the client version.
// Everything it shows comes from the session's LoginFlow; it forwards clicks and opens the
// account dialogs.
class ChatLogin : public QWidget {
    Q_OBJECT
  public:
    ChatLogin(ServerSession& session, Prompter& prompter, QWidget* parent = nullptr);

    QTreeWidget* accountList() const { return list_; }
    QPushButton* loginButton() const { return button_; }
    QString statusText() const;
    QString versionText() const;
    SignUpDialog* signUpDialog() const { return signUp_; }

    // The list's items addquick, modify and removeacc.
    void addAccount();
    void modifyAccount();
    void removeAccount();

  private:
    void refillList();
    void showButton(const LoginButton& button);
    void refreshStatus();
    void openSignUp();
    void closeSignUp();

    ServerSession& session_;
    Prompter& prompter_;
    LoginFlow& login_;
    SavedAccounts& accounts_;
    QTreeWidget* list_;
    QPushButton* button_;
    QLabel* status_;
    QLabel* version_;
    QTimer statusTimer_;
    SignUpDialog* signUp_ = nullptr;  // made for each sign-up connection
};

}  // namespace tavren
