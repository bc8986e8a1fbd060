#include "core/ui/ChatLogin.h"

#include <QAction>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <utility>

#include "core/LoginFlow.h"
#include "core/Prompter.h"
#include "core/SavedAccounts.h"
#include "core/ServerSession.h"
#include "core/ui/AccountEntryDialog.h"
#include "core/ui/SignUpDialog.h"

namespace tavren {

namespace {
const QString kMaskedPassword = QStringLiteral("********");
}  // namespace

ChatLogin::ChatLogin(ServerSession& session, Prompter& prompter, QWidget* parent)
    : QWidget(parent, Qt::Window),
      session_(session),
      prompter_(prompter),
      login_(session.login()),
      accounts_(session.accounts()),
      list_(new QTreeWidget(this)),
      button_(new QPushButton(this)),
      status_(new QLabel(this)),
      version_(new QLabel(LoginFlow::versionText(), this)) {
    setObjectName(QStringLiteral("ChatLogin"));
    setWindowTitle(QStringLiteral("Tavren Login"));
    setMinimumSize(260, 300);
    resize(300, 360);

    list_->setObjectName(QStringLiteral("ListView1"));
    list_->setColumnCount(2);
    list_->setHeaderLabels({QStringLiteral("Account"), QStringLiteral("Password")});
    list_->setRootIsDecorated(false);
    list_->header()->setStretchLastSection(true);
    list_->setContextMenuPolicy(Qt::ActionsContextMenu);
    button_->setObjectName(QStringLiteral("XPButton4"));
    button_->setDefault(true);
    status_->setObjectName(QStringLiteral("Label3"));
    // A failure is said in words, which may take two lines.
    status_->setWordWrap(true);
    version_->setObjectName(QStringLiteral("versionLabel"));

    const auto addItem = [this](const QString& name, const QString& caption, auto slot) {
        auto* action = new QAction(caption, list_);
        action->setObjectName(name);
        connect(action, &QAction::triggered, this, slot);
        list_->addAction(action);
        auto* pushButton = new QPushButton(caption, this);
        pushButton->setObjectName(name + QStringLiteral("Button"));
        connect(pushButton, &QPushButton::clicked, this, slot);
        return pushButton;
    };
    auto* accountButtons = new QHBoxLayout;
    accountButtons->addWidget(
        addItem(QStringLiteral("addquick"), QStringLiteral("&Add.."), &ChatLogin::addAccount));
    accountButtons->addWidget(
        addItem(QStringLiteral("modify"), QStringLiteral("&Modify.."), &ChatLogin::modifyAccount));
    accountButtons->addWidget(
        addItem(QStringLiteral("removeacc"), QStringLiteral("&Remove"), &ChatLogin::removeAccount));

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(QStringLiteral("Saved accounts:"), this));
    layout->addWidget(list_);
    layout->addLayout(accountButtons);
    layout->addWidget(button_);
    layout->addWidget(status_);
    layout->addWidget(version_);

    refillList();
    showButton(login_.button());
    connect(&accounts_, &SavedAccounts::changed, this, &ChatLogin::refillList);
    connect(&login_, &LoginFlow::selectionChanged, this, [this](int row) {
        if (list_->currentItem() != list_->topLevelItem(row)) {
            list_->setCurrentItem(list_->topLevelItem(row));
        }
    });
    connect(list_, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
        if (item != nullptr) {
            login_.select(list_->indexOfTopLevelItem(item));
        }
    });
    connect(list_, &QTreeWidget::itemDoubleClicked, this, [this] { login_.clickLoginButton(); });
    connect(button_, &QPushButton::clicked, &login_, &LoginFlow::clickLoginButton);
    connect(&login_, &LoginFlow::buttonChanged, this, &ChatLogin::showButton);
    connect(&login_, &LoginFlow::addAccountRequested, this, &ChatLogin::addAccount);
    connect(&login_, &LoginFlow::signUpRequested, this, &ChatLogin::openSignUp);
    connect(&login_, &LoginFlow::loginAccepted, this, [this] {
        closeSignUp();
        hide();
    });
    connect(&login_, &LoginFlow::onlineChanged, this, [this](bool online) {
        if (!online) {
            show();
        }
    });
    connect(&session_.connection(), &ServerConnection::wentOffline, this, &ChatLogin::closeSignUp);
    connect(&session_.connection(), &ServerConnection::connectFailed, this,
            &ChatLogin::closeSignUp);

    statusTimer_.setObjectName(QStringLiteral("Timer2"));
    statusTimer_.setInterval(session.options().statusRefreshMs);
    connect(&statusTimer_, &QTimer::timeout, this, &ChatLogin::refreshStatus);
    statusTimer_.start();
    refreshStatus();
}

void ChatLogin::refillList() {
    const QSignalBlocker blocker(list_);
    list_->clear();
    for (int row = 0; row < accounts_.rowCount(); ++row) {
        const SavedAccounts::Account account = accounts_.row(row);
        auto* item = new QTreeWidgetItem(list_);
        item->setText(0, account.name);
        item->setText(1, accounts_.isNewUserRow(row) ? QString() : kMaskedPassword);
    }
    list_->setCurrentItem(list_->topLevelItem(login_.selectedRow()));
}

void ChatLogin::showButton(const LoginButton& button) {
    button_->setText(button.caption);
    button_->setToolTip(button.hint);
}

void ChatLogin::refreshStatus() {
    status_->setText(login_.statusText());
}

QString ChatLogin::statusText() const {
    return status_->text();
}
QString ChatLogin::versionText() const {
    return version_->text();
}

void ChatLogin::addAccount() {
    auto* dialog = new AccountEntryDialog(accounts_, 0, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QDialog::accepted, this, [this, dialog] {
        if (dialog->savedRow() > 0) {
            login_.select(dialog->savedRow());
        }
    });
    dialog->open();
}

void ChatLogin::modifyAccount() {
    if (accounts_.isNewUserRow(login_.selectedRow())) {
        addAccount();
        return;
    }
    auto* dialog = new AccountEntryDialog(accounts_, login_.selectedRow(), this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

void ChatLogin::removeAccount() {
    const int row = login_.selectedRow();
    if (accounts_.isNewUserRow(row)) {
        return;
    }
    const Prompter::Answer answer = prompter_.askYesNo(
        QStringLiteral(
            "Remove the account %1 from this list?\n\nThe account itself stays on the server.")
            .arg(accounts_.row(row).name),
        QStringLiteral("Remove Account"));
    if (answer != Prompter::Answer::Yes) {
        return;
    }
    accounts_.remove(row);
    login_.select(std::min(row, accounts_.rowCount() - 1));
}

void ChatLogin::openSignUp() {
    // Kept between tries on one connection, so a refused sign-up comes back as it was typed.
    if (signUp_ == nullptr) {
        signUp_ = new SignUpDialog(login_, this);
    }
    SignUpDialog* dialog = signUp_;
    dialog->open();
    dialog->raise();
}

void ChatLogin::closeSignUp() {
    SignUpDialog* dialog = std::exchange(signUp_, nullptr);
    if (dialog == nullptr) {
        return;
    }
    if (dialog->isVisible()) {
        // done() rather than reject(): the connection is already gone, nothing to cancel.
        dialog->done(QDialog::Rejected);
    }
    dialog->deleteLater();
}

}  // namespace tavren
