#include "core/ui/ChangePasswordDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

#include "core/AccountRequests.h"

namespace tavren {

ChangePasswordDialog::ChangePasswordDialog(AccountRequests& requests, QWidget* parent)
    : QDialog(parent),
      requests_(requests),
      current_(new QLineEdit(this)),
      replacement_(new QLineEdit(this)),
      confirmation_(new QLineEdit(this)),
      problem_(new QLabel(this)) {
    setObjectName(QStringLiteral("changepassword"));
    setWindowTitle(QStringLiteral("Change Password"));
    for (QLineEdit* field : {current_, replacement_, confirmation_}) {
        field->setEchoMode(QLineEdit::Password);
    }
    current_->setObjectName(QStringLiteral("currentPassword"));
    replacement_->setObjectName(QStringLiteral("newPassword"));
    confirmation_->setObjectName(QStringLiteral("confirmPassword"));
    problem_->setObjectName(QStringLiteral("problem"));
    problem_->setStyleSheet(QStringLiteral("color: #b00000"));
    problem_->setWordWrap(true);
    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("&Current password:"), current_);
    form->addRow(QStringLiteral("&New password:"), replacement_);
    form->addRow(QStringLiteral("C&onfirm new password:"), confirmation_);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(problem_);
    layout->addWidget(buttons);
}

void ChangePasswordDialog::accept() {
    const QString problem = AccountRequests::checkPasswordChange(
        current_->text(), replacement_->text(), confirmation_->text());
    if (!problem.isEmpty()) {
        problem_->setText(problem);
        return;
    }
    if (!requests_.changePassword(current_->text(), replacement_->text())) {
        problem_->setText(QStringLiteral("You are not logged in."));
        return;
    }
    QDialog::accept();
}

}  // namespace tavren
