#pragma once

#include <QDialog>
#include <QHash>
#include <QSet>

class QAction;
class QMenu;
class QPushButton;
class QTreeWidgetItem;

namespace tavren {

class BuddyDropTree;
class BuddyEditor;
class BuddyList;
class Prompter;

// The buddy list editor ("Edit Buddies.."): the folders and buddies in the tree `TreeView2`,
// buttons and a right-click menu to add buddies and folders, rename and remove folders, remove
// buddies and move them between folders (or drag them there). Changes stay in the editor until
// Save sends the whole list.
class ChatBuddy : public QDialog {
    Q_OBJECT
  public:
    ChatBuddy(BuddyList& list, Prompter& prompter, QWidget* parent = nullptr);
    ~ChatBuddy() override;

    // The editor of `parent`, raised if it is open already, else a new one (deleted on close).
    static ChatBuddy* open(BuddyList& list, Prompter& prompter, QWidget* parent);

    BuddyEditor& editor() { return *editor_; }
    BuddyDropTree& tree() { return *tree_; }
    QPushButton* button(const QString& name) const { return buttons_.value(name); }
    // The "Move to folder" entries for the selected buddy (one per other folder).
    QMenu* moveMenu() const { return moveMenu_; }
    // The right-click menu for an item; the caller owns it.
    QMenu* menuFor(QTreeWidgetItem* item);

    // Saves; true when the list went to the server.
    bool save();

  public slots:
    // Asks before unsaved changes are dropped.
    void reject() override;

  private:
    QPushButton* addButton(const QString& name, const QString& caption);
    void rebuildTree();
    void refreshButtons();
    void fillMoveMenu(QMenu* menu, const QString& buddy);
    QString selectedFolder() const;
    QString selectedBuddy() const;
    void addBuddy();
    void removeSelected();

    BuddyList& list_;
    Prompter& prompter_;
    BuddyEditor* editor_ = nullptr;
    BuddyDropTree* tree_ = nullptr;
    QMenu* moveMenu_ = nullptr;
    QHash<QString, QPushButton*> buttons_;
    QSet<QString> collapsed_;
};

}  // namespace tavren
