#include "core/ui/ChangeEmailDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

#include "core/AccountRequests.h"

namespace tavren {

ChangeEmailDialog::ChangeEmailDialog(AccountRequests& requests, const QString& currentEmail,
                                     QWidget* parent)
    : QDialog(parent),
      requests_(requests),
      email_(new QLineEdit(currentEmail, this)),
      problem_(new QLabel(this)) {
    setObjectName(QStringLiteral("mnueditemail"));
    setWindowTitle(QStringLiteral("Change E-mail Address"));
    email_->setObjectName(QStringLiteral("email"));
    problem_->setObjectName(QStringLiteral("problem"));
    problem_->setStyleSheet(QStringLiteral("color: #b00000"));
    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("&E-mail address:"), email_);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(problem_);
    layout->addWidget(buttons);
}

void ChangeEmailDialog::accept() {
    const QString problem = AccountRequests::checkEmail(email_->text());
    if (!problem.isEmpty()) {
        problem_->setText(problem);
        return;
    }
    if (!requests_.changeEmail(email_->text())) {
        problem_->setText(QStringLiteral("You are not logged in."));
        return;
    }
    QDialog::accept();
}

}  // namespace tavren
