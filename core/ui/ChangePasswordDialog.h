#pragma once

#include "core/ui/FormDialog.h"

namespace tavren {

class AccountRequests;

// Changes the logged-in member's password: the current one and the new one twice. The server's
// answer arrives later as a "Success!" or "Attention!" message.
class ChangePasswordDialog : public FormDialog {
    Q_OBJECT
  public:
    explicit ChangePasswordDialog(AccountRequests& requests, QWidget* parent = nullptr);

    void accept() override;

  private:
    AccountRequests& requests_;
    QLineEdit* current_;
    QLineEdit* replacement_;
    QLineEdit* confirmation_;
};

}  // namespace tavren
