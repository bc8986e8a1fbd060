#include "core/ui/AccountEntryDialog.h"

#include <QLineEdit>

#include "core/SavedAccounts.h"

namespace tavren {

AccountEntryDialog::AccountEntryDialog(SavedAccounts& accounts, int row, QWidget* parent)
    : FormDialog(accounts.isNewUserRow(row) ? QStringLiteral("addquick") : QStringLiteral("modify"),
                 accounts.isNewUserRow(row) ? QStringLiteral("Add Account")
                                            : QStringLiteral("Modify Account"),
                 parent),
      accounts_(accounts),
      row_(accounts.isNewUserRow(row) ? 0 : row),
      name_(addField(QStringLiteral("&Nickname:"), QStringLiteral("accountName"))),
      password_(addField(QStringLiteral("&Password:"), QStringLiteral("accountPassword"), true)) {
    setNote(
        QStringLiteral("The password is kept on this computer as you type it, so that you "
                       "can log in with one click."));
    if (row_ != 0) {
        const SavedAccounts::Account account = accounts.row(row_);
        name_->setText(account.name);
        password_->setText(account.password);
    }
}

void AccountEntryDialog::accept() {
    const QString problem = accounts_.checkEntry(name_->text(), password_->text(), row_);
    if (!problem.isEmpty()) {
        showProblem(problem);
        return;
    }
    savedRow_ = row_ == 0 ? accounts_.add(name_->text(), password_->text())
                          : accounts_.modify(row_, name_->text(), password_->text());
    QDialog::accept();
}

}  // namespace tavren
