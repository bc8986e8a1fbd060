#include "rooms/ui/ChatJoin.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "config/ColumnWidths.h"
#include "core/ServerSession.h"
#include "rooms/ChannelDirectory.h"
#include "rooms/RoomCommandHost.h"

namespace tavren {

namespace {
constexpr int kDefaultWidths[] = {170, 50, 125, 260};
}  // namespace

ChatJoin::ChatJoin(ChannelDirectory& directory, ServerSession& server, SettingsStore& store,
                   RoomCommandHost& host, QWidget* parent)
    : QWidget(parent, Qt::Window), directory_(directory), store_(store) {
    setObjectName(QStringLiteral("ChatJoin"));
    setWindowTitle(tr("Find Channels"));
    auto* layout = new QVBoxLayout(this);

    list_ = new QTreeWidget(this);
    list_->setObjectName(QStringLiteral("ListView1"));
    list_->setHeaderLabels({tr("Channel"), tr("Users"), tr("Status"), tr("Topic")});
    list_->setRootIsDecorated(false);
    list_->setUniformRowHeights(true);
    list_->setAllColumnsShowFocus(true);
    list_->header()->setSectionsMovable(false);
    list_->headerItem()->setTextAlignment(1, Qt::AlignRight);
    for (int column = 0; column < list_->columnCount(); ++column) {
        list_->setColumnWidth(
            column, ColumnWidths::read(store_, ColumnWidths::Join, column, kDefaultWidths[column]));
    }
    connect(list_->header(), &QHeaderView::sectionResized, this,
            [this](int column, int, int width) {
                if (width > 0) {
                    ColumnWidths::write(store_, ColumnWidths::Join, column, width);
                }
            });
    connect(list_, &QTreeWidget::itemActivated, this, [this] { joinSelected(); });
    layout->addWidget(list_, 1);

    auto* row = new QHBoxLayout;
    count_ = new QLabel(this);
    count_->setObjectName(QStringLiteral("Label1"));
    join_ = new QPushButton(tr("&Join"), this);
    join_->setObjectName(QStringLiteral("XPButton1"));
    join_->setDefault(true);
    refresh_ = new QPushButton(tr("&Refresh"), this);
    refresh_->setObjectName(QStringLiteral("XPButton2"));
    create_ = new QPushButton(tr("&Create Channel.."), this);
    create_->setObjectName(QStringLiteral("XPButton3"));
    auto* close = new QPushButton(tr("Close"), this);
    close->setObjectName(QStringLiteral("XPButton4"));
    row->addWidget(count_, 1);
    row->addWidget(join_);
    row->addWidget(refresh_);
    row->addWidget(create_);
    row->addWidget(close);
    layout->addLayout(row);

    connect(join_, &QPushButton::clicked, this, &ChatJoin::joinSelected);
    connect(refresh_, &QPushButton::clicked, &directory_, &ChannelDirectory::request);
    connect(create_, &QPushButton::clicked, this, [&host] { host.openChannelCreation(); });
    connect(close, &QPushButton::clicked, this, &QWidget::close);
    connect(&directory_, &ChannelDirectory::listed, this, &ChatJoin::showList);
    const auto followOnline = [this](bool online) {
        for (QPushButton* button : {join_, refresh_, create_}) {
            button->setEnabled(online);
        }
        if (!online) {
            count_->setText(tr("Log in to see the channels."));
        }
    };
    connect(&server, &ServerSession::onlineChanged, this, followOnline);
    followOnline(server.online());
    showList();
    resize(640, 400);
}

void ChatJoin::showList() {
    list_->clear();
    for (const DirectoryEntry& entry : directory_.entries()) {
        auto* item = new QTreeWidgetItem(
            list_, {entry.name, entry.countText(), entry.statusText(), entry.topic});
        item->setTextAlignment(1, Qt::AlignRight | Qt::AlignVCenter);
        item->setToolTip(3, entry.topic);
        if (entry.passwordProtected) {
            item->setToolTip(0, tr("This channel asks for a password."));
        }
    }
    const auto shown = directory_.entries().size();
    count_->setText(shown == 1 ? tr("1 channel") : tr("%1 channels").arg(shown));
}

void ChatJoin::joinSelected() {
    const QTreeWidgetItem* item = list_->currentItem();
    if (item == nullptr || !item->isSelected()) {
        return;
    }
    directory_.join(item->text(0));
}

}  // namespace tavren
