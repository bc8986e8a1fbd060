#pragma once

#include <QString>

#include "contacts/BuddyPresence.h"

class QTreeWidgetItem;

namespace tavren {

// The items both buddy trees are made of. Each item keeps what it stands for (folder or buddy,
// its name) and the key of its picture: "down" or "right" for a folder, "+", "-" or "u" for a
// buddy, so that a node is a buddy exactly when its picture is not a folder's.
class BuddyTreeItems {
  public:
    static QTreeWidgetItem* folder(const QString& name, const QString& caption, bool expanded);
    static QTreeWidgetItem* buddy(const QString& name);

    static bool isFolder(const QTreeWidgetItem* item);
    static bool isBuddy(const QTreeWidgetItem* item);
    static QString nameOf(const QTreeWidgetItem* item);
    static QString imageKeyOf(const QTreeWidgetItem* item);

    // A folder's picture follows its expansion.
    static void showExpanded(QTreeWidgetItem* item, bool expanded);
    // A buddy's picture, tooltip and colour: offline buddies are greyed.
    static void showPresence(QTreeWidgetItem* item, const BuddyPresence& presence);
};

}  // namespace tavren
