#include "contacts/ui/BuddyTree.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <memory>

#include "contacts/BuddyList.h"
#include "contacts/IgnoreList.h"
#include "contacts/ui/BuddyTreeItems.h"

namespace tavren {

BuddyTree::BuddyTree(BuddyList& list, IgnoreList& ignoreList, QWidget* parent)
    : QTreeWidget(parent), list_(list), ignoreList_(ignoreList) {
    setObjectName(QStringLiteral("TreeView1"));
    setHeaderHidden(true);
    // The folder's own picture shows whether it is open, so the branch arrows would say it twice.
    setRootIsDecorated(false);
    setExpandsOnDoubleClick(false);
    setIndentation(16);
    setUniformRowHeights(true);
    setIconSize(QSize(16, 16));
    setSelectionMode(QAbstractItemView::SingleSelection);
    setMinimumSize(160, 120);

    connect(this, &QTreeWidget::itemExpanded, this, [this](QTreeWidgetItem* item) {
        BuddyTreeItems::showExpanded(item, true);
        collapsed_.remove(BuddyTreeItems::nameOf(item).toLower());
    });
    connect(this, &QTreeWidget::itemCollapsed, this, [this](QTreeWidgetItem* item) {
        BuddyTreeItems::showExpanded(item, false);
        collapsed_.insert(BuddyTreeItems::nameOf(item).toLower());
    });
    connect(&list_, &BuddyList::listChanged, this, &BuddyTree::rebuild);
    connect(&list_, &BuddyList::optionsChanged, this, &BuddyTree::rebuild);
    connect(&list_, &BuddyList::presenceChanged, this, &BuddyTree::refreshBuddy);
    connect(&list_, &BuddyList::captionChanged, viewport(), qOverload<>(&QWidget::update));
    rebuild();
}

QTreeWidgetItem* BuddyTree::folderItem(const QString& folder) const {
    for (int i = 0; i < topLevelItemCount(); ++i) {
        QTreeWidgetItem* item = topLevelItem(i);
        if (BuddyTreeItems::nameOf(item).compare(folder, Qt::CaseInsensitive) == 0) {
            return item;
        }
    }
    return nullptr;
}

QTreeWidgetItem* BuddyTree::buddyItem(const QString& name) const {
    for (int i = 0; i < topLevelItemCount(); ++i) {
        QTreeWidgetItem* folder = topLevelItem(i);
        for (int j = 0; j < folder->childCount(); ++j) {
            if (BuddyTreeItems::nameOf(folder->child(j)).compare(name, Qt::CaseInsensitive) == 0) {
                return folder->child(j);
            }
        }
    }
    return nullptr;
}

void BuddyTree::rebuild() {
    const QString selected = BuddyTreeItems::nameOf(currentItem());
    const bool showOffline = list_.options().showOffline;
    // Expanding items below fires itemExpanded, which must not forget the closed folders.
    const QSet<QString> collapsed = collapsed_;
    clear();
    for (const BuddyFolder& folder : list_.folders()) {
        const bool expanded = !collapsed.contains(folder.name.toLower());
        QTreeWidgetItem* folderItem =
            BuddyTreeItems::folder(folder.name, list_.folderCaption(folder), expanded);
        addTopLevelItem(folderItem);
        for (const QString& name : folder.buddies) {
            QTreeWidgetItem* buddy = BuddyTreeItems::buddy(name);
            const BuddyPresence presence = list_.presence(name);
            BuddyTreeItems::showPresence(buddy, presence);
            folderItem->addChild(buddy);
            buddy->setHidden(!showOffline && !presence.online);
        }
        folderItem->setExpanded(expanded);
    }
    collapsed_ = collapsed;
    if (QTreeWidgetItem* again = buddyItem(selected)) {
        setCurrentItem(again);
    }
}

void BuddyTree::refreshBuddy(const QString& name) {
    QTreeWidgetItem* item = buddyItem(name);
    if (item == nullptr) {
        return;
    }
    const BuddyPresence presence = list_.presence(name);
    BuddyTreeItems::showPresence(item, presence);
    item->setHidden(!list_.options().showOffline && !presence.online);
    refreshFolderCaption(item->parent());
}

void BuddyTree::refreshFolderCaption(QTreeWidgetItem* folderItem) {
    const QString name = BuddyTreeItems::nameOf(folderItem);
    for (const BuddyFolder& folder : list_.folders()) {
        if (folder.name == name) {
            folderItem->setText(0, list_.folderCaption(folder));
            return;
        }
    }
}

void BuddyTree::activate(QTreeWidgetItem* item) {
    if (BuddyTreeItems::isFolder(item)) {
        item->setExpanded(!item->isExpanded());
    } else if (BuddyTreeItems::isBuddy(item)) {
        emit conversationRequested(BuddyTreeItems::nameOf(item));
    }
}

void BuddyTree::mousePressEvent(QMouseEvent* event) {
    QTreeWidget::mousePressEvent(event);
    QTreeWidgetItem* item = itemAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton && BuddyTreeItems::isFolder(item)) {
        item->setExpanded(!item->isExpanded());
    }
}

void BuddyTree::mouseDoubleClickEvent(QMouseEvent* event) {
    // The press before it has opened or closed a folder already.
    QTreeWidgetItem* item = itemAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton && BuddyTreeItems::isBuddy(item)) {
        emit conversationRequested(BuddyTreeItems::nameOf(item));
        event->accept();
        return;
    }
    QTreeWidget::mouseDoubleClickEvent(event);
}

void BuddyTree::keyPressEvent(QKeyEvent* event) {
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) &&
        currentItem() != nullptr) {
        activate(currentItem());
        event->accept();
        return;
    }
    QTreeWidget::keyPressEvent(event);
}

QMenu* BuddyTree::menuFor(QTreeWidgetItem* item) {
    if (!BuddyTreeItems::isBuddy(item)) {
        return nullptr;
    }
    const QString name = BuddyTreeItems::nameOf(item);
    auto* menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("buddyMenu"));
    const auto add = [menu](const char* objectName, const QString& caption, bool enabled) {
        QAction* action = menu->addAction(caption);
        action->setObjectName(QString::fromLatin1(objectName));
        action->setEnabled(enabled);
        return action;
    };
    connect(add("sendpm", tr("Send Private &Message"), true), &QAction::triggered, this,
            [this, name] { emit conversationRequested(name); });
    connect(add("locate", tr("&Locate"), true), &QAction::triggered, this,
            [this, name] { emit locateRequested(name); });
    connect(add("viewprofile", tr("View &Profile"), true), &QAction::triggered, this,
            [this, name] { emit profileRequested(name); });
    menu->addSeparator();
    connect(add("removebuddy", tr("&Remove Buddy"), true), &QAction::triggered, this,
            [this, name] { list_.removeBuddy(name); });
    connect(add("unignore", tr("Un-Ignore User.."), ignoreList_.contains(name)),
            &QAction::triggered, this, [this, name] {
                if (ignoreList_.remove(name)) {
                    ignoreList_.save();
                }
            });
    menu->addSeparator();
    // The Hold'em tables are not part of this client yet.
    add("game", tr("Game"), false);
    return menu;
}

QString BuddyTree::emptyText() const {
    if (topLevelItemCount() > 0) {
        return QString();
    }
    return list_.online() ? tr("No buddies yet. Add one with Buddies > Add Buddy..")
                          : tr("Log in to see which of your buddies are online.");
}

void BuddyTree::paintEvent(QPaintEvent* event) {
    QTreeWidget::paintEvent(event);
    const QString text = emptyText();
    if (text.isEmpty()) {
        return;
    }
    QPainter painter(viewport());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    const QRect area = viewport()->rect().adjusted(8, 8, -8, -8);
    painter.drawText(area, Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, text);
}

void BuddyTree::contextMenuEvent(QContextMenuEvent* event) {
    QTreeWidgetItem* item = itemAt(event->pos());
    if (item != nullptr) {
        setCurrentItem(item);
    }
    const std::unique_ptr<QMenu> menu(menuFor(item));
    if (menu) {
        menu->exec(event->globalPos());
    }
}

}  // namespace tavren
