#include "contacts/ui/BuddyDropTree.h"

#include <QDropEvent>
#include <QTimer>

#include "contacts/ui/BuddyTreeItems.h"

namespace tavren {

BuddyDropTree::BuddyDropTree(QWidget* parent) : QTreeWidget(parent) {
    setDragEnabled(true);
    setAcceptDrops(true);
    setDropIndicatorShown(true);
    setDragDropMode(QAbstractItemView::InternalMove);
    setDefaultDropAction(Qt::MoveAction);
}

void BuddyDropTree::dropEvent(QDropEvent* event) {
    QTreeWidgetItem* dragged = currentItem();
    QTreeWidgetItem* target = itemAt(event->position().toPoint());
    // The drag ends with nothing moved by the view: the editor rebuilds the tree from its copy.
    event->setDropAction(Qt::IgnoreAction);
    event->accept();
    if (!BuddyTreeItems::isBuddy(dragged) || target == nullptr || target == dragged) {
        return;
    }
    QString folder;
    int beforeIndex = -1;
    if (BuddyTreeItems::isFolder(target)) {
        folder = BuddyTreeItems::nameOf(target);
    } else {
        QTreeWidgetItem* parentFolder = target->parent();
        folder = BuddyTreeItems::nameOf(parentFolder);
        const int at = parentFolder->indexOfChild(target);
        beforeIndex = dropIndicatorPosition() == QAbstractItemView::BelowItem ? at + 1 : at;
    }
    const QString name = BuddyTreeItems::nameOf(dragged);
    // After the drag has finished with the items it holds.
    QTimer::singleShot(0, this, [this, name, folder, beforeIndex] {
        emit moveRequested(name, folder, beforeIndex);
    });
}

}  // namespace tavren
