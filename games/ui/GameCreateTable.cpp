#include "games/ui/GameCreateTable.h"

#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>

#include "games/GameSession.h"

namespace tavren {

GameCreateTable::GameCreateTable(GameSession& games, QWidget* parent)
    : FormDialog(QStringLiteral("GameCreateTable"), QStringLiteral("Create Table"), parent),
      games_(games) {
    name_ = addField(QStringLiteral("Table &name:"), QStringLiteral("tableName"));
    name_->setMaxLength(30);
    const auto numberBox = [this](const char* name, int lowest, int highest) {
        auto* box = new QSpinBox(this);
        box->setObjectName(QString::fromLatin1(name));
        box->setRange(lowest, highest);
        return box;
    };
    seats_ = numberBox("seats", 2, 10);
    smallBlind_ = numberBox("smallBlind", 1, 1'000'000);
    bigBlind_ = numberBox("bigBlind", 1, 1'000'000);
    buyIn_ = numberBox("buyIn", 2, 100'000'000);
    buyIn_->setSingleStep(100);
    addRow(QStringLiteral("&Seats:"), seats_);
    addRow(QStringLiteral("S&mall blind:"), smallBlind_);
    addRow(QStringLiteral("Bi&g blind:"), bigBlind_);
    addRow(QStringLiteral("B&uy-in:"), buyIn_);
    // A row, not a field: it is optional, so the typing starts in the name, not here.
    password_ = new QLineEdit(this);
    password_->setObjectName(QStringLiteral("tablePassword"));
    password_->setEchoMode(QLineEdit::Password);
    password_->setPlaceholderText(QStringLiteral("none: anybody may sit down"));
    password_->setMinimumWidth(
        password_->fontMetrics().horizontalAdvance(password_->placeholderText()) + 24);
    addRow(QStringLiteral("&Password:"), password_);
    okButton()->setText(QStringLiteral("&Create"));
    okButton()->setObjectName(QStringLiteral("createTable"));
    connect(smallBlind_, &QSpinBox::valueChanged, this, [this](int small) {
        if (bigBlind_->value() < small) {
            bigBlind_->setValue(small);
        }
    });
    reset();
}

void GameCreateTable::accept() {
    if (submit()) {
        FormDialog::accept();
    }
}

void GameCreateTable::reset() {
    name_->setText(games_.defaultTableName());
    seats_->setValue(6);
    smallBlind_->setValue(5);
    bigBlind_->setValue(10);
    buyIn_->setValue(1000);
    password_->clear();
    showProblem(QString());
}

bool GameCreateTable::submit() {
    const QString name = name_->text().trimmed();
    QString why = GameSession::checkTableName(name);
    if (why.isEmpty() && smallBlind_->value() > bigBlind_->value()) {
        why = QStringLiteral("The small blind cannot be bigger than the big blind.");
    }
    if (why.isEmpty() && buyIn_->value() < 2 * bigBlind_->value()) {
        why = QStringLiteral("The buy-in must be at least two big blinds.");
    }
    if (why.isEmpty() && !games_.create(name, seats_->value(), smallBlind_->value(),
                                        bigBlind_->value(), buyIn_->value(), password_->text())) {
        why = QStringLiteral("You are not logged in.");
    }
    showProblem(why);
    return why.isEmpty();
}

}  // namespace tavren
