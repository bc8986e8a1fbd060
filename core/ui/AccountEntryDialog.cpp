#include "core/ui/AccountEntryDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

#include "core/SavedAccounts.h"

namespace tavren {

AccountEntryDialog::AccountEntryDialog(SavedAccounts& accounts, int row, QWidget* parent)
    : QDialog(parent),
      accounts_(accounts),
      row_(accounts.isNewUserRow(row) ? 0 : row),
      name_(new QLineEdit(this)),
      password_(new QLineEdit(this)),
      problem_(new QLabel(this)) {
    setObjectName(row_ == 0 ? QStringLiteral("addquick") : QStringLiteral("modify"));
    setWindowTitle(row_ == 0 ? QStringLiteral("Add Account") : QStringLiteral("Modify Account"));
    name_->setObjectName(QStringLiteral("accountName"));
    password_->setObjectName(QStringLiteral("accountPassword"));
    password_->setEchoMode(QLineEdit::Password);
    problem_->setObjectName(QStringLiteral("problem"));
    problem_->setStyleSheet(QStringLiteral("color: #b00000"));
    problem_->setWordWrap(true);
    if (row_ != 0) {
        const SavedAccounts::Account account = accounts.row(row_);
        name_->setText(account.name);
        password_->setText(account.password);
    }

    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("&Nickname:"), name_);
    form->addRow(QStringLiteral("&Password:"), password_);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(
        QStringLiteral("The password is kept on this computer as you type it, so that you "
                       "can log in with one click."),
        this));
    layout->addLayout(form);
    layout->addWidget(problem_);
    layout->addWidget(buttons);
}

void AccountEntryDialog::accept() {
    const QString problem = accounts_.checkEntry(name_->text(), password_->text(), row_);
    if (!problem.isEmpty()) {
        problem_->setText(problem);
        return;
    }
    savedRow_ = row_ == 0 ? accounts_.add(name_->text(), password_->text())
                          : accounts_.modify(row_, name_->text(), password_->text());
    QDialog::accept();
}

}  // namespace tavren
