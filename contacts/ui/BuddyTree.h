#pragma once

#include <QSet>
#include <QTreeWidget>

namespace tavren {

class BuddyList;
class IgnoreList;

// The main window's buddy list: folders captioned "Folder (online/total)" with an open or
// closed picture, and under them the buddies with their presence and tooltip, offline buddies
// greyed (or hidden, as the member chose). A click on a folder opens or closes it; a double
// click or Enter on a buddy asks for a conversation with that buddy.
class BuddyTree : public QTreeWidget {
    Q_OBJECT
  public:
    BuddyTree(BuddyList& list, IgnoreList& ignoreList, QWidget* parent = nullptr);

    QTreeWidgetItem* folderItem(const QString& folder) const;
    QTreeWidgetItem* buddyItem(const QString& name) const;
    // The right-click menu of an item, or null for none (folders have none). The caller owns
    // it; every entry carries an object name.
    QMenu* menuFor(QTreeWidgetItem* item);
    // What an empty tree says: how to log in or how to add a buddy.
    QString emptyText() const;

  signals:
    void conversationRequested(const QString& name);
    void locateRequested(const QString& name);
    void profileRequested(const QString& name);

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    // An empty tree says why it is empty.
    void paintEvent(QPaintEvent* event) override;

  private:
    void rebuild();
    void refreshBuddy(const QString& name);
    void refreshFolderCaption(QTreeWidgetItem* folder);
    void activate(QTreeWidgetItem* item);

    BuddyList& list_;
    IgnoreList& ignoreList_;
    // Folders the member closed, by lower-case name: a new list keeps them closed.
    QSet<QString> collapsed_;
};

}  // namespace tavren
