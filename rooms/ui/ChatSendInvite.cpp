#include "rooms/ui/ChatSendInvite.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "rooms/RoomInvitations.h"
#include "rooms/RoomSession.h"

namespace tavren {

ChatSendInvite::ChatSendInvite(RoomSession& rooms, Prompter& prompter, QWidget* parent)
    : QDialog(parent), rooms_(rooms), prompter_(prompter) {
    setObjectName(QStringLiteral("ChatSendInvite"));
    setWindowTitle(tr("Invite User"));
    user_ = new QLineEdit(this);
    user_->setObjectName(QStringLiteral("Text1"));
    user_->setMaxLength(20);
    user_->setPlaceholderText(tr("member's name"));
    channel_ = new QComboBox(this);
    channel_->setObjectName(QStringLiteral("Combo1"));
    channel_->setPlaceholderText(tr("Select a channel"));
    auto* form = new QFormLayout;
    form->addRow(tr("&Invite:"), user_);
    form->addRow(tr("to &channel:"), channel_);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(tr("&Invite"));
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("XPButton1"));
    connect(buttons, &QDialogButtonBox::accepted, this, &ChatSendInvite::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
    setMinimumWidth(340);
}

void ChatSendInvite::prepare(const QString& user) {
    channel_->clear();
    for (int i = 0; i < rooms_.count(); ++i) {
        channel_->addItem(rooms_.room(i).name);
    }
    channel_->setCurrentIndex(rooms_.selected());
    user_->setText(user);
    user_->setFocus(Qt::OtherFocusReason);
}

void ChatSendInvite::accept() {
    if (rooms_.invitations().invite(user_->text(), channel_->currentText(), prompter_)) {
        QDialog::accept();
    }
}

}  // namespace tavren
