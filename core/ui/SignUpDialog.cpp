#include "core/ui/SignUpDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/LoginFlow.h"

namespace tavren {

SignUpDialog::SignUpDialog(LoginFlow& login, QWidget* parent)
    : QDialog(parent),
      login_(login),
      name_(new QLineEdit(this)),
      password_(new QLineEdit(this)),
      confirmation_(new QLineEdit(this)),
      email_(new QLineEdit(this)),
      problem_(new QLabel(this)) {
    setObjectName(QStringLiteral("SignUpDialog"));
    setWindowTitle(QStringLiteral("Sign Up for Tavren Chat"));
    name_->setObjectName(QStringLiteral("signUpName"));
    password_->setObjectName(QStringLiteral("signUpPassword"));
    confirmation_->setObjectName(QStringLiteral("signUpConfirmation"));
    email_->setObjectName(QStringLiteral("signUpEmail"));
    password_->setEchoMode(QLineEdit::Password);
    confirmation_->setEchoMode(QLineEdit::Password);
    problem_->setObjectName(QStringLiteral("problem"));
    problem_->setStyleSheet(QStringLiteral("color: #b00000"));
    problem_->setWordWrap(true);

    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("&Nickname:"), name_);
    form->addRow(QStringLiteral("&Password:"), password_);
    form->addRow(QStringLiteral("&Confirm password:"), confirmation_);
    form->addRow(QStringLiteral("&E-mail address:"), email_);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(QStringLiteral("&Sign Up"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(
        QStringLiteral("A nickname has 2 to 20 letters, digits, '_', '-' or '.', starting with a "
                       "letter. A password has 4 to 64 characters."),
        this));
    layout->addLayout(form);
    layout->addWidget(problem_);
    layout->addWidget(buttons);
}

void SignUpDialog::showProblem(const QString& problem) {
    problem_->setText(problem);
}

void SignUpDialog::accept() {
    const QString problem = LoginFlow::checkSignUp(name_->text(), password_->text(),
                                                   confirmation_->text(), email_->text());
    if (!problem.isEmpty()) {
        showProblem(problem);
        return;
    }
    problem_->clear();
    QDialog::accept();
    login_.submitSignUp(name_->text(), password_->text(), email_->text());
}

void SignUpDialog::reject() {
    QDialog::reject();
    login_.cancelSignUp();
}

}  // namespace tavren
