#include "rooms/ui/RoomTab.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPushButton>
#include <QSplitter>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "render/RankMarks.h"
#include "render/ui/ChatPane.h"
#include "rooms/MemberRank.h"
#include "rooms/ui/RoomIcons.h"
#include "rooms/ui/RoomInputBox.h"

namespace tavren {

namespace {
constexpr int kMemberListWidth = 150;
}  // namespace

RoomTab::RoomTab(const QString& dataRoot, QWidget* parent) : QWidget(parent) {
    auto* splitter = new QSplitter(Qt::Horizontal, this);
    pane_ = new ChatPane(splitter);
    pane_->setDataRoot(dataRoot);
    pane_->setObjectName(QStringLiteral("WebBrowser1"));
    members_ = new QTreeWidget(splitter);
    members_->setObjectName(QStringLiteral("ListView1"));
    members_->setColumnCount(2);
    members_->setHeaderLabels({tr("Members"), QString()});
    members_->setColumnHidden(1, true);
    members_->setRootIsDecorated(false);
    members_->setUniformRowHeights(true);
    members_->setSortingEnabled(false);  // the server's order is the ranking
    members_->setContextMenuPolicy(Qt::CustomContextMenu);
    members_->header()->setStretchLastSection(true);
    members_->setMinimumWidth(110);
    members_->installEventFilter(this);
    splitter->addWidget(pane_);
    splitter->addWidget(members_);
    splitter->setStretchFactor(0, 1);
    splitter->setStretchFactor(1, 0);
    splitter->setSizes({500, kMemberListWidth});
    splitter->setChildrenCollapsible(false);

    input_ = new RoomInputBox(this);
    input_->setObjectName(QStringLiteral("RichTextBox2"));
    smileys_ = new QToolButton(this);
    smileys_->setObjectName(QStringLiteral("smileyButton"));
    smileys_->setText(QStringLiteral(":-)"));
    smileys_->setToolTip(tr("Insert a smiley"));
    send_ = new QPushButton(tr("&Send"), this);
    send_->setObjectName(QStringLiteral("XPButton4"));
    send_->setAutoDefault(false);

    auto* inputRow = new QHBoxLayout;
    inputRow->addWidget(input_, 1);
    inputRow->addWidget(smileys_);
    inputRow->addWidget(send_);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(splitter, 1);
    layout->addLayout(inputRow);

    connect(input_, &RoomInputBox::submitted, this, &RoomTab::sendRequested);
    connect(input_, &RoomInputBox::leaveRequested, this, &RoomTab::leaveRequested);
    connect(send_, &QPushButton::clicked, this, [this] { emit sendRequested(input_->text()); });
    connect(smileys_, &QToolButton::clicked, this, [this] { emit smileyRequested(smileys_); });
    connect(members_, &QTreeWidget::customContextMenuRequested, this, [this](const QPoint& at) {
        if (QTreeWidgetItem* item = members_->itemAt(at)) {
            members_->setCurrentItem(item);
            emit memberMenuRequested(item->text(0), members_->viewport()->mapToGlobal(at));
        }
    });
    connect(members_, &QTreeWidget::itemDoubleClicked, this,
            [this](QTreeWidgetItem* item) { emit memberActivated(item->text(0)); });
    setFocusProxy(input_);
}

void RoomTab::setMembers(const QStringList& listedNames) {
    members_->setUpdatesEnabled(false);
    members_->clear();
    QList<QTreeWidgetItem*> items;
    items.reserve(listedNames.size());
    for (const QString& name : listedNames) {
        if (name.isEmpty()) {
            continue;
        }
        auto* item = new QTreeWidgetItem({name, StripRankMarks(name)});
        item->setIcon(0, RoomIcons::rank(MemberRank::iconFor(name)));
        items << item;
    }
    members_->addTopLevelItems(items);
    members_->setUpdatesEnabled(true);
}

int RoomTab::memberCount() const {
    return members_->topLevelItemCount();
}

bool RoomTab::eventFilter(QObject* watched, QEvent* event) {
    if (watched == members_ && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        emit leaveRequested();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace tavren
