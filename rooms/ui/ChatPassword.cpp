#include "rooms/ui/ChatPassword.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "rooms/RoomSession.h"

namespace tavren {

ChatPassword::ChatPassword(RoomSession& rooms, const QString& channel, QWidget* parent)
    : QDialog(parent), rooms_(rooms), channel_(channel) {
    setObjectName(QStringLiteral("ChatPassword"));
    setWindowTitle(tr("Channel Password"));
    sentence_ = new QLabel(this);
    sentence_->setObjectName(QStringLiteral("Label1"));
    sentence_->setWordWrap(true);
    sentence_->setTextFormat(Qt::PlainText);
    auto* channelName = new QLabel(channel, this);
    channelName->setObjectName(QStringLiteral("Label2"));
    channelName->setTextFormat(Qt::PlainText);
    password_ = new QLineEdit(this);
    password_->setObjectName(QStringLiteral("ChanPass"));
    password_->setEchoMode(QLineEdit::Password);
    password_->setMaxLength(32);
    auto* form = new QFormLayout;
    form->addRow(tr("Channel:"), channelName);
    form->addRow(tr("&Password:"), password_);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(tr("&Join"));
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("XPButton1"));
    connect(buttons, &QDialogButtonBox::accepted, this, &ChatPassword::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(sentence_);
    layout->addLayout(form);
    layout->addWidget(buttons);
    setMinimumWidth(340);
}

void ChatPassword::ask(const QString& sentence) {
    sentence_->setText(sentence);
    password_->clear();
    password_->setFocus(Qt::OtherFocusReason);
}

QString ChatPassword::sentence() const {
    return sentence_->text();
}

void ChatPassword::accept() {
    if (password_->text().isEmpty()) {
        password_->setFocus(Qt::OtherFocusReason);
        return;
    }
    rooms_.joinWithPassword(channel_, password_->text());
    QDialog::accept();
}

}  // namespace tavren
