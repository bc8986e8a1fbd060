#include "core/ui/ChangeEmailDialog.h"

#include <QLineEdit>

#include "core/AccountRequests.h"

namespace tavren {

ChangeEmailDialog::ChangeEmailDialog(AccountRequests& requests, const QString& currentEmail,
                                     QWidget* parent)
    : FormDialog(QStringLiteral("mnueditemail"), QStringLiteral("Change E-mail Address"), parent),
      requests_(requests),
      email_(addField(QStringLiteral("&E-mail address:"), QStringLiteral("email"), false,
                      currentEmail)) {}

void ChangeEmailDialog::accept() {
    const QString problem = AccountRequests::checkEmail(email_->text());
    if (!problem.isEmpty()) {
        showProblem(problem);
        return;
    }
    if (!requests_.changeEmail(email_->text())) {
        showProblem(QStringLiteral("You are not logged in."));
        return;
    }
    QDialog::accept();
}

}  // namespace tavren
