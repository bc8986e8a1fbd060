#pragma once

#include <QObject>
#include <QString>

#include "contacts/BuddyFolder.h"

namespace tavren {

class BuddyList;
class Prompter;

// The buddy list editor's working copy and its rules: what it asks, what it refuses and with
// which message. The editor window shows the copy and forwards the member's actions; nothing
// reaches the server until save().
class BuddyEditor : public QObject {
    Q_OBJECT
  public:
    BuddyEditor(BuddyList& list, Prompter& prompter, QObject* parent = nullptr);

    const BuddyFolders& folders() const { return folders_; }
    bool modified() const { return modified_; }
    // Starts over from the list as it is now.
    void reload();

    // Asks for a name ("Enter user name:") and adds it to `folder` (the default folder when
    // empty or unknown). False when the member cancelled or the name was refused.
    bool askAndAddBuddy(const QString& folder);
    bool addBuddy(const QString& name, const QString& folder);
    bool askAndAddFolder();
    bool addFolder(const QString& name);
    bool askAndRenameFolder(const QString& folder);
    bool renameFolder(const QString& folder, const QString& newName);
    bool removeBuddy(const QString& name);
    // Asks first ("Remove Group?"); a "No" keeps the folder.
    bool removeFolder(const QString& folder);
    // Moves a buddy into `folder`, before the buddy at `beforeIndex` there (-1: at the end).
    bool moveBuddy(const QString& name, const QString& folder, int beforeIndex = -1);

    // Sends the copy as the new list. False, with a message, while offline.
    bool save();

    // The main window's "Add Buddy..": asks for a name and adds it to the list at once.
    static bool askAndAddTo(BuddyList& list, Prompter& prompter);
    // The refusals for a new buddy name, shown as messages. True when `name` may be added.
    static bool admitBuddy(const QString& name, const BuddyFolders& folders, Prompter& prompter);

  signals:
    void changed();

  private:
    bool admitFolder(const QString& name, const QString& except);
    int folderIndex(const QString& name) const;
    void touch();

    BuddyList& list_;
    Prompter& prompter_;
    BuddyFolders folders_;
    bool modified_ = false;
};

}  // namespace tavren
