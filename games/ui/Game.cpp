#include "games/ui/Game.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <QSplitter>
#include <QVBoxLayout>

#include "games/GameSession.h"
#include "games/TableState.h"
#include "games/ui/TableView.h"
#include "render/ui/ChatPane.h"
#include "render/ui/PaneReset.h"

namespace tavren {

Game::Game(GameSession& games, const QString& table, const QString& dataRoot, QWidget* parent)
    : QWidget(parent), games_(games), table_(table) {
    setObjectName(QStringLiteral("Game"));
    setWindowTitle(QStringLiteral("Texas Hold'em - ") + table);
    resize(980, 720);

    view_ = new TableView(this);
    pane_ = new ChatPane(this);
    pane_->setObjectName(QStringLiteral("tablePane"));
    pane_->setDataRoot(dataRoot);
    ResetTablePane(*pane_, GameSession::kFeltColor);
    input_ = new QLineEdit(this);
    input_->setObjectName(QStringLiteral("tableInput"));
    input_->setPlaceholderText(QStringLiteral("Say something to the table.."));
    input_->setMaxLength(2000);

    turn_ = new QLabel(this);
    turn_->setObjectName(QStringLiteral("turnLabel"));
    ownHand_ = new QLabel(this);
    ownHand_->setObjectName(QStringLiteral("ownHandLabel"));
    QFont bold = ownHand_->font();
    bold.setBold(true);
    ownHand_->setFont(bold);
    turn_->setFont(bold);

    fold_ = new QPushButton(QStringLiteral("&Fold"), this);
    fold_->setObjectName(QStringLiteral("fold"));
    call_ = new QPushButton(QStringLiteral("&Check"), this);
    call_->setObjectName(QStringLiteral("call"));
    raise_ = new QPushButton(QStringLiteral("&Bet"), this);
    raise_->setObjectName(QStringLiteral("raise"));
    allIn_ = new QPushButton(QStringLiteral("&All In"), this);
    allIn_->setObjectName(QStringLiteral("allin"));
    slider_ = new QSlider(Qt::Horizontal, this);
    slider_->setObjectName(QStringLiteral("betSlider"));
    amount_ = new QSpinBox(this);
    amount_->setObjectName(QStringLiteral("betAmount"));
    amount_->setRange(0, 100'000'000);
    amount_->setMinimumWidth(90);
    sitOut_ = new QCheckBox(QStringLiteral("Sit &out next hand"), this);
    sitOut_->setObjectName(QStringLiteral("sitout"));
    auto* invite = new QPushButton(QStringLiteral("&Invite.."), this);
    invite->setObjectName(QStringLiteral("invite"));
    auto* leave = new QPushButton(QStringLiteral("&Leave Table"), this);
    leave->setObjectName(QStringLiteral("leave"));

    auto* moves = new QHBoxLayout;
    moves->addWidget(fold_);
    moves->addWidget(call_);
    moves->addWidget(raise_);
    moves->addWidget(slider_, 1);
    moves->addWidget(amount_);
    moves->addWidget(allIn_);
    auto* status = new QHBoxLayout;
    status->addWidget(turn_, 1);
    status->addWidget(ownHand_, 1);
    status->addWidget(sitOut_);
    status->addWidget(invite);
    status->addWidget(leave);

    auto* chat = new QWidget(this);
    auto* chatLayout = new QVBoxLayout(chat);
    chatLayout->setContentsMargins(0, 0, 0, 0);
    chatLayout->addWidget(pane_, 1);
    chatLayout->addWidget(input_);
    auto* split = new QSplitter(Qt::Vertical, this);
    split->addWidget(view_);
    split->addWidget(chat);
    split->setStretchFactor(0, 4);
    split->setStretchFactor(1, 1);
    split->setChildrenCollapsible(false);
    split->setSizes({520, 170});

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(split, 1);
    layout->addLayout(status);
    layout->addLayout(moves);

    connect(fold_, &QPushButton::clicked, this,
            [this] { games_.act(table_, QStringLiteral("fold")); });
    connect(call_, &QPushButton::clicked, this, [this] {
        const TableState* state = games_.table(table_);
        games_.act(table_, state && state->offer.toCall > 0 ? QStringLiteral("call")
                                                            : QStringLiteral("check"));
    });
    connect(raise_, &QPushButton::clicked, this, [this] {
        const TableState* state = games_.table(table_);
        const bool bet = state && state->offer.currentBet == 0;
        if (state && amount_->value() >= state->offer.maxRaiseTo) {
            games_.act(table_, QStringLiteral("allin"));
        } else {
            games_.act(table_, bet ? QStringLiteral("bet") : QStringLiteral("raise"),
                       amount_->value());
        }
    });
    connect(allIn_, &QPushButton::clicked, this,
            [this] { games_.act(table_, QStringLiteral("allin")); });
    connect(slider_, &QSlider::valueChanged, amount_, &QSpinBox::setValue);
    connect(amount_, &QSpinBox::valueChanged, this, [this](int value) {
        const QSignalBlocker block(slider_);
        slider_->setValue(value);
    });
    connect(sitOut_, &QCheckBox::toggled, this, [this](bool out) { games_.sitOut(table_, out); });
    connect(invite, &QPushButton::clicked, this, [this] { emit inviteRequested(table_); });
    connect(leave, &QPushButton::clicked, this, &QWidget::close);
    connect(input_, &QLineEdit::returnPressed, this, &Game::sendChat);
    connect(&games_, &GameSession::tableChanged, this, [this](const QString& name) {
        if (name.compare(table_, Qt::CaseInsensitive) == 0) {
            refresh();
        }
    });
    connect(&games_, &GameSession::lineAdded, this,
            [this](const QString& name, const QString& html) {
                if (name.compare(table_, Qt::CaseInsensitive) == 0) {
                    AddChat2(html);
                }
            });
    clock_.setInterval(1000);
    connect(&clock_, &QTimer::timeout, this, &Game::tick);
    clock_.start();
    refresh();
}

Game::~Game() = default;

void Game::AddChat2(const QString& html) {
    pane_->AddChat(html);
}

void Game::refresh() {
    const TableState* state = games_.table(table_);
    if (!state) {
        return;
    }
    view_->show(*state, games_.ownName());
    secondsLeft_ = state->ownTurn ? state->offer.seconds : state->secondsLeft;
    view_->setSecondsLeft(secondsLeft_);

    const QString words = BestHand(*state, games_.ownName());
    ownHand_->setText(words.isEmpty() ? QString() : QStringLiteral("Your hand: ") + words);
    const TablePlayer* acting = state->player(state->toAct);
    if (state->ownTurn) {
        turn_->setText(QStringLiteral("Your turn: %1 s").arg(secondsLeft_));
    } else if (acting) {
        turn_->setText(acting->name + QStringLiteral(" to act"));
    } else if (state->players.size() < 2) {
        turn_->setText(QStringLiteral("Waiting for players.."));
    } else {
        turn_->setText(QString());
    }

    const bool mine = state->ownTurn;
    const TurnOffer& offer = state->offer;
    fold_->setEnabled(mine);
    call_->setEnabled(mine);
    call_->setText(mine && offer.toCall > 0 ? QStringLiteral("&Call %1").arg(offer.toCall)
                                            : QStringLiteral("&Check"));
    const bool canRaise = mine && offer.minRaiseTo > 0;
    raise_->setEnabled(canRaise);
    raise_->setText(offer.currentBet == 0 ? QStringLiteral("&Bet") : QStringLiteral("&Raise to"));
    slider_->setEnabled(canRaise);
    amount_->setEnabled(canRaise);
    allIn_->setEnabled(mine);
    if (canRaise) {
        const QSignalBlocker a(amount_);
        const QSignalBlocker s(slider_);
        slider_->setRange(offer.minRaiseTo, offer.maxRaiseTo);
        slider_->setSingleStep(qMax(1, state->bigBlind));
        slider_->setPageStep(qMax(1, (offer.maxRaiseTo - offer.minRaiseTo) / 10));
        amount_->setRange(offer.minRaiseTo, offer.maxRaiseTo);
        amount_->setValue(offer.minRaiseTo);
        slider_->setValue(offer.minRaiseTo);
    }
}

void Game::tick() {
    if (secondsLeft_ > 0) {
        --secondsLeft_;
        view_->setSecondsLeft(secondsLeft_);
        const TableState* state = games_.table(table_);
        if (state && state->ownTurn) {
            turn_->setText(QStringLiteral("Your turn: %1 s").arg(secondsLeft_));
        }
    }
}

void Game::sendChat() {
    const QString text = input_->text();
    if (games_.say(table_, text)) {
        input_->clear();
    }
}

void Game::closeEvent(QCloseEvent* event) {
    if (!leaving_ && games_.table(table_)) {
        leaving_ = true;
        games_.leave(table_);
    }
    event->accept();
}

}  // namespace tavren
