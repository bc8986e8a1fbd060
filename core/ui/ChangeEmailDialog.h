#pragma once

#include "core/ui/FormDialog.h"

namespace tavren {

class AccountRequests;

// Changes the logged-in member's e-mail address, starting from the address the server has.
class ChangeEmailDialog : public FormDialog {
    Q_OBJECT
  public:
    ChangeEmailDialog(AccountRequests& requests, const QString& currentEmail,
                      QWidget* parent = nullptr);

    void accept() override;

  private:
    AccountRequests& requests_;
    QLineEdit* email_;
};

}  // namespace tavren
