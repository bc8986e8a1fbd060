#include "rooms/ui/ChatInvite.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace tavren {

ChatInvite::ChatInvite(RoomInvitations& invitations, const RoomInvitation& invitation,
                       QWidget* parent)
    : QDialog(parent), invitations_(invitations), invitation_(invitation) {
    setObjectName(QStringLiteral("ChatInvite"));
    setWindowTitle(tr("Invitation to %1").arg(invitation.channel));
    setAttribute(Qt::WA_ShowWithoutActivating);
    text_ = new QLabel(invitation.text(), this);
    text_->setObjectName(QStringLiteral("Label1"));
    text_->setWordWrap(true);
    text_->setTextFormat(Qt::PlainText);
    auto* buttons = new QDialogButtonBox(this);
    QPushButton* join = buttons->addButton(tr("&Join Channel"), QDialogButtonBox::AcceptRole);
    join->setObjectName(QStringLiteral("XPButton1"));
    QPushButton* decline = buttons->addButton(tr("&No Thanks"), QDialogButtonBox::RejectRole);
    decline->setObjectName(QStringLiteral("XPButton2"));
    connect(buttons, &QDialogButtonBox::accepted, this, &ChatInvite::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(text_);
    layout->addWidget(buttons);
    setMinimumWidth(340);
}

QString ChatInvite::text() const {
    return text_->text();
}

void ChatInvite::accept() {
    invitations_.accept(invitation_);
    QDialog::accept();
}

}  // namespace tavren
