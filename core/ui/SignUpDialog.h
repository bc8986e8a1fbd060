#pragma once

#include "core/ui/FormDialog.h"

namespace tavren {

class LoginFlow;

// Asks a new member for a nickname, a password (twice) and an e-mail address and sends the
// registration. The connection to the server is open while it is shown; closing it without
// signing up closes the connection. Kept (with what was typed) when the server refuses, so the
// member can correct one field.
class SignUpDialog : public FormDialog {
    Q_OBJECT
  public:
    explicit SignUpDialog(LoginFlow& login, QWidget* parent = nullptr);

    void accept() override;
    void reject() override;

  private:
    LoginFlow& login_;
    QLineEdit* name_;
    QLineEdit* password_;
    QLineEdit* confirmation_;
    QLineEdit* email_;
};

}  // namespace tavren
