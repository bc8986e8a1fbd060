#include "core/ui/ChangePasswordDialog.h"

#include <QLineEdit>

#include "core/AccountRequests.h"

namespace tavren {

ChangePasswordDialog::ChangePasswordDialog(AccountRequests& requests, QWidget* parent)
    : FormDialog(QStringLiteral("changepassword"), QStringLiteral("Change Password"), parent),
      requests_(requests),
      current_(
          addField(QStringLiteral("&Current password:"), QStringLiteral("currentPassword"), true)),
      replacement_(addField(QStringLiteral("&New password:"), QStringLiteral("newPassword"), true)),
      confirmation_(addField(QStringLiteral("C&onfirm new password:"),
                             QStringLiteral("confirmPassword"), true)) {}

void ChangePasswordDialog::accept() {
    const QString problem = AccountRequests::checkPasswordChange(
        current_->text(), replacement_->text(), confirmation_->text());
    if (!problem.isEmpty()) {
        showProblem(problem);
        return;
    }
    if (!requests_.changePassword(current_->text(), replacement_->text())) {
        showProblem(QStringLiteral("You are not logged in."));
        return;
    }
    QDialog::accept();
}

}  // namespace tavren
