#include "contacts/ui/BuddyTreeItems.h"

#include <QApplication>
#include <QPalette>
#include <QTreeWidgetItem>

#include "contacts/ui/BuddyIcons.h"

namespace tavren {

namespace {

enum Role { KindRole = Qt::UserRole, NameRole, ImageRole };
enum Kind { FolderKind = 1, BuddyKind };

}  // namespace

QTreeWidgetItem* BuddyTreeItems::folder(const QString& name, const QString& caption,
                                        bool expanded) {
    auto* item = new QTreeWidgetItem(QStringList{caption});
    item->setData(0, KindRole, FolderKind);
    item->setData(0, NameRole, name);
    QFont bold = item->font(0);
    bold.setBold(true);
    item->setFont(0, bold);
    showExpanded(item, expanded);
    return item;
}

QTreeWidgetItem* BuddyTreeItems::buddy(const QString& name) {
    auto* item = new QTreeWidgetItem(QStringList{name});
    item->setData(0, KindRole, BuddyKind);
    item->setData(0, NameRole, name);
    showPresence(item, BuddyPresence{});
    return item;
}

bool BuddyTreeItems::isFolder(const QTreeWidgetItem* item) {
    return item != nullptr && item->data(0, KindRole).toInt() == FolderKind;
}

bool BuddyTreeItems::isBuddy(const QTreeWidgetItem* item) {
    return item != nullptr && item->data(0, KindRole).toInt() == BuddyKind;
}

QString BuddyTreeItems::nameOf(const QTreeWidgetItem* item) {
    return item == nullptr ? QString() : item->data(0, NameRole).toString();
}

QString BuddyTreeItems::imageKeyOf(const QTreeWidgetItem* item) {
    return item == nullptr ? QString() : item->data(0, ImageRole).toString();
}

void BuddyTreeItems::showExpanded(QTreeWidgetItem* item, bool expanded) {
    item->setData(0, ImageRole, expanded ? QStringLiteral("down") : QStringLiteral("right"));
    item->setIcon(0, BuddyIcons::folder(expanded));
}

void BuddyTreeItems::showPresence(QTreeWidgetItem* item, const BuddyPresence& presence) {
    const BuddyPresence::Image image = presence.image();
    item->setData(0, ImageRole, BuddyPresence::imageKey(image));
    item->setIcon(0, BuddyIcons::presence(image));
    // The tooltip's lines are joined by carriage returns, which a tooltip shows as nothing.
    item->setToolTip(0,
                     presence.tooltip(nameOf(item)).replace(QLatin1Char('\r'), QLatin1Char('\n')));
    if (presence.online) {
        item->setData(0, Qt::ForegroundRole, QVariant());
    } else {
        item->setForeground(0, QApplication::palette().brush(QPalette::Disabled, QPalette::Text));
    }
}

}  // namespace tavren
