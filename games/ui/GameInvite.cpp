#include "games/ui/GameInvite.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "games/GameSession.h"

namespace tavren {

GameInvite::GameInvite(GameSession& games, QWidget* parent) : QWidget(parent), games_(games) {
    setObjectName(QStringLiteral("GameInvite"));
    setWindowTitle(QStringLiteral("Invite to Table"));
    user_ = new QLineEdit(this);
    user_->setObjectName(QStringLiteral("inviteUser"));
    user_->setMaxLength(20);
    table_ = new QComboBox(this);
    table_->setObjectName(QStringLiteral("inviteTable"));
    problem_ = new QLabel(this);
    problem_->setObjectName(QStringLiteral("problem"));
    problem_->setStyleSheet(QStringLiteral("color: #B00000;"));
    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("&Member:"), user_);
    form->addRow(QStringLiteral("&Table:"), table_);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(QStringLiteral("&Invite"));
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("sendInvite"));
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(problem_);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] {
        if (submit()) {
            close();
        }
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QWidget::close);
}

void GameInvite::prepare(const QString& user, const QString& table) {
    user_->setText(user);
    table_->clear();
    table_->addItems(games_.tables());
    if (!table.isEmpty()) {
        table_->setCurrentText(table);
    }
    problem_->clear();
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
    problem_->setText(why);
    return why.isEmpty();
}

}  // namespace tavren
