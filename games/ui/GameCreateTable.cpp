#include "games/ui/GameCreateTable.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QSpinBox>
#include <QVBoxLayout>

#include "games/GameSession.h"

namespace tavren {

GameCreateTable::GameCreateTable(GameSession& games, QWidget* parent)
    : QWidget(parent), games_(games) {
    setObjectName(QStringLiteral("GameCreateTable"));
    setWindowTitle(QStringLiteral("Create Table"));
    name_ = new QLineEdit(this);
    name_->setObjectName(QStringLiteral("tableName"));
    name_->setMaxLength(30);
    seats_ = new QSpinBox(this);
    seats_->setObjectName(QStringLiteral("seats"));
    seats_->setRange(2, 10);
    smallBlind_ = new QSpinBox(this);
    smallBlind_->setObjectName(QStringLiteral("smallBlind"));
    smallBlind_->setRange(1, 1'000'000);
    bigBlind_ = new QSpinBox(this);
    bigBlind_->setObjectName(QStringLiteral("bigBlind"));
    bigBlind_->setRange(1, 1'000'000);
    buyIn_ = new QSpinBox(this);
    buyIn_->setObjectName(QStringLiteral("buyIn"));
    buyIn_->setRange(2, 100'000'000);
    buyIn_->setSingleStep(100);
    password_ = new QLineEdit(this);
    password_->setObjectName(QStringLiteral("tablePassword"));
    password_->setEchoMode(QLineEdit::Password);
    password_->setPlaceholderText(QStringLiteral("none: anybody may sit down"));
    password_->setMinimumWidth(
        password_->fontMetrics().horizontalAdvance(password_->placeholderText()) + 24);
    problem_ = new QLabel(this);
    problem_->setObjectName(QStringLiteral("problem"));
    problem_->setStyleSheet(QStringLiteral("color: #B00000;"));
    problem_->setWordWrap(true);

    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("Table &name:"), name_);
    form->addRow(QStringLiteral("&Seats:"), seats_);
    form->addRow(QStringLiteral("S&mall blind:"), smallBlind_);
    form->addRow(QStringLiteral("Bi&g blind:"), bigBlind_);
    form->addRow(QStringLiteral("B&uy-in:"), buyIn_);
    form->addRow(QStringLiteral("&Password:"), password_);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(QStringLiteral("&Create"));
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("createTable"));
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
    // A plain window has no default button: Enter in any field creates the table, Esc closes.
    for (const auto key : {Qt::Key_Return, Qt::Key_Enter}) {
        auto* enter = new QShortcut(QKeySequence(key), this);
        enter->setContext(Qt::WidgetWithChildrenShortcut);
        connect(enter, &QShortcut::activated, buttons, &QDialogButtonBox::accepted);
    }
    auto* escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    escape->setContext(Qt::WidgetWithChildrenShortcut);
    connect(escape, &QShortcut::activated, this, &QWidget::close);
    connect(smallBlind_, &QSpinBox::valueChanged, this, [this](int small) {
        if (bigBlind_->value() < small) {
            bigBlind_->setValue(small);
        }
    });
    reset();
}

void GameCreateTable::reset() {
    name_->setText(games_.defaultTableName());
    seats_->setValue(6);
    smallBlind_->setValue(5);
    bigBlind_->setValue(10);
    buyIn_->setValue(1000);
    password_->clear();
    problem_->clear();
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
    problem_->setText(why);
    return why.isEmpty();
}

}  // namespace tavren
