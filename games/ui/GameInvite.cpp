#include "games/ui/GameInvite.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>

#include "games/GameSession.h"

namespace tavren {

GameInvite::GameInvite(GameSession& games, QWidget* parent)
    : FormDialog(QStringLiteral("GameInvite"), QStringLiteral("Invite to Table"), parent),
      games_(games) {
    user_ = addField(QStringLiteral("&Member:"), QStringLiteral("inviteUser"));
    user_->setMaxLength(20);
    table_ = new QComboBox(this);
    table_->setObjectName(QStringLiteral("inviteTable"));
    addRow(QStringLiteral("&Table:"), table_);
    okButton()->setText(QStringLiteral("&Invite"));
    okButton()->setObjectName(QStringLiteral("sendInvite"));
}

void GameInvite::accept() {
    if (submit()) {
        FormDialog::accept();
    }
}

void GameInvite::prepare(const QString& user, const QString& table) {
    user_->setText(user);
    table_->clear();
    table_->addItems(games_.tables());
    if (!table.isEmpty()) {
        table_->setCurrentText(table);
    }
    showProblem(QString());
}

bool GameInvite::submit() {
    const QString user = user_->text().trimmed();
    QString why;
    if (user.isEmpty()) {
        why = QStringLiteral("Whom do you want to invite?");
    } else if (user.compare(games_.ownName(), Qt::CaseInsensitive) == 0) {
        why = QStringLiteral("You cannot invite yourself..");
    } else if (table_->currentText().isEmpty()) {
        why = QStringLiteral("Sit at a table first, then invite somebody to it.");
    } else if (!games_.invite(user, table_->currentText())) {
        why = QStringLiteral("The invitation could not be sent.");
    }
    showProblem(why);
    return why.isEmpty();
}

}  // namespace tavren
