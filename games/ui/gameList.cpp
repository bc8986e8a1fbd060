#include "games/ui/gameList.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "config/ColumnWidths.h"
#include "games/GameSession.h"

namespace tavren {

namespace {
const int kDefaultWidths[] = {200, 70, 90, 80, 80, 80};
constexpr int kLockedRole = Qt::UserRole + 1;
}  // namespace

gameList::gameList(GameSession& games, SettingsStore& store, QWidget* parent)
    : QWidget(parent), games_(games), store_(store) {
    setObjectName(QStringLiteral("gameList"));
    setWindowTitle(QStringLiteral("Texas Hold'em Tables"));
    resize(660, 380);
    list_ = new QTreeWidget(this);
    list_->setObjectName(QStringLiteral("tableList"));
    list_->setRootIsDecorated(false);
    list_->setAlternatingRowColors(true);
    list_->setHeaderLabels({QStringLiteral("Table"), QStringLiteral("Players"),
                            QStringLiteral("Blinds"), QStringLiteral("Buy-in"),
                            QStringLiteral("Password"), QStringLiteral("Status")});
    for (int column = 0; column < list_->columnCount(); ++column) {
        list_->setColumnWidth(column, ColumnWidths::read(store_, ColumnWidths::Table, column,
                                                         kDefaultWidths[column]));
    }
    connect(list_->header(), &QHeaderView::sectionResized, this,
            [this](int column, int, int width) {
                ColumnWidths::write(store_, ColumnWidths::Table, column, width);
            });
    auto* refresh = new QPushButton(QStringLiteral("&Refresh"), this);
    refresh->setObjectName(QStringLiteral("refresh"));
    join_ = new QPushButton(QStringLiteral("&Join"), this);
    join_->setObjectName(QStringLiteral("join"));
    auto* create = new QPushButton(QStringLiteral("&Create Table.."), this);
    create->setObjectName(QStringLiteral("create"));
    auto* close = new QPushButton(QStringLiteral("C&lose"), this);
    auto* hint = new QLabel(QStringLiteral("Double-click a table to sit down. Your chips are your "
                                           "Tavren Score."),
                            this);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(hint, 1);
    buttons->addWidget(refresh);
    buttons->addWidget(create);
    buttons->addWidget(join_);
    buttons->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(list_, 1);
    layout->addLayout(buttons);

    connect(refresh, &QPushButton::clicked, this, &gameList::refresh);
    connect(join_, &QPushButton::clicked, this, &gameList::joinSelected);
    connect(create, &QPushButton::clicked, this, &gameList::createRequested);
    connect(close, &QPushButton::clicked, this, &QWidget::close);
    connect(list_, &QTreeWidget::itemDoubleClicked, this, &gameList::joinSelected);
    connect(&games_, &GameSession::listChanged, this, &gameList::fill);
    fill();
}

void gameList::refresh() {
    games_.askList();
}

void gameList::fill() {
    list_->clear();
    for (const TableListing& t : games_.listing()) {
        auto* item = new QTreeWidgetItem(list_);
        item->setText(0, t.name);
        item->setText(1, QStringLiteral("%1/%2").arg(t.players).arg(t.seats));
        item->setText(2, QStringLiteral("%1/%2").arg(t.smallBlind).arg(t.bigBlind));
        item->setText(3, QString::number(t.buyIn));
        item->setText(4, t.locked ? QStringLiteral("Yes") : QStringLiteral("No"));
        item->setText(5, t.playing ? QStringLiteral("Playing") : QStringLiteral("Waiting"));
        item->setData(0, kLockedRole, t.locked);
    }
    if (list_->topLevelItemCount() > 0) {
        list_->setCurrentItem(list_->topLevelItem(0));
    }
    join_->setEnabled(list_->topLevelItemCount() > 0);
}

void gameList::joinSelected() {
    if (QTreeWidgetItem* item = list_->currentItem()) {
        emit joinRequested(item->text(0), item->data(0, kLockedRole).toBool());
    }
}

}  // namespace tavren
