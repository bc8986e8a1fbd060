#include "core/ui/SignUpDialog.h"

#include <QLineEdit>
#include <QPushButton>

#include "core/LoginFlow.h"

namespace tavren {

SignUpDialog::SignUpDialog(LoginFlow& login, QWidget* parent)
    : FormDialog(QStringLiteral("SignUpDialog"), QStringLiteral("Sign Up for Tavren Chat"), parent),
      login_(login),
      name_(addField(QStringLiteral("&Nickname:"), QStringLiteral("signUpName"))),
      password_(addField(QStringLiteral("&Password:"), QStringLiteral("signUpPassword"), true)),
      confirmation_(addField(QStringLiteral("&Confirm password:"),
                             QStringLiteral("signUpConfirmation"), true)),
      email_(addField(QStringLiteral("&E-mail address:"), QStringLiteral("signUpEmail"))) {
    // Signing up adds the account to the saved accounts, password and all, as adding one by
    // hand does; say so before the member types the password.
    setNote(
        QStringLiteral("A nickname has 2 to 20 letters, digits, '_', '-' or '.', starting with "
                       "a letter. A password has 4 to 64 characters.\n\n"
                       "The new account is added to the saved accounts on this computer, with "
                       "the password as you type it, so that you can log in with one click."));
    okButton()->setText(QStringLiteral("&Sign Up"));
}

void SignUpDialog::accept() {
    const QString problem = LoginFlow::checkSignUp(name_->text(), password_->text(),
                                                   confirmation_->text(), email_->text());
    if (!problem.isEmpty()) {
        showProblem(problem);
        return;
    }
    showProblem(QString());
    QDialog::accept();
    login_.submitSignUp(name_->text(), password_->text(), email_->text());
}

void SignUpDialog::reject() {
    QDialog::reject();
    login_.cancelSignUp();
}

}  // namespace tavren
