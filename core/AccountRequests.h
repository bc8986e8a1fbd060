#pragma once

#include <QObject>
#include <QString>

#include "core/ServerMessage.h"

namespace tavren {

class LoginFlow;
class SavedAccounts;
class ServerLink;

// The logged-in member's account requests: change the password (1, 3) and the e-mail address
// (ask with (1, 8), the server answers (1, 9), set with (1, 7)). The server confirms with a
// success notice (1, 18) or refuses with a notice (group 4).
class AccountRequests : public QObject {
    Q_OBJECT
  public:
    AccountRequests(ServerLink& link, LoginFlow& login, SavedAccounts& accounts,
                    QObject* parent = nullptr);

    // The first problem with the change-password dialog's fields, or an empty string.
    static QString checkPasswordChange(const QString& current, const QString& replacement,
                                       const QString& confirmation);
    static QString checkEmail(const QString& email);

    // Each returns false when not logged in (nothing is sent then).
    bool changePassword(const QString& current, const QString& replacement);
    bool askEmail();
    bool changeEmail(const QString& email);
    // How the member's own lines look to others; empty clears it. The server confirms with
    // the account data, which carries the format back.
    bool changeNicknameFormat(const QString& format);

    // Server messages, routed here by the dispatcher.
    void onAccountInfo(const ServerMessage& message);
    void onSuccessNotice(const ServerMessage& message);
    void onNotice(const ServerMessage& message);

  signals:
    // The server's answer to askEmail(): open the change-e-mail dialog with it.
    void emailReceived(const QString& email);

  private:
    ServerLink& link_;
    LoginFlow& login_;
    SavedAccounts& accounts_;
    // A password change waiting for the server's answer; the saved account follows on success.
    QString pendingPassword_;
    bool emailAsked_ = false;
};

}  // namespace tavren
