#pragma once

#include <QString>

#include "contacts/BuddyFolder.h"

namespace tavren {

// The buddy list as it travels: for every buddy, folder "." name ":" (e.g.
// "Buddies.anna:Work.bob:"). Folders come out in the order of their first buddy, so a folder
// without buddies does not travel at all.
class BuddyListText {
  public:
    // Entries that name no valid member, or a folder that cannot be one, are skipped, and the
    // same buddy twice (letter case ignored) is kept once, in its first folder. An entry
    // without a folder, or with an empty one, goes to the default folder.
    static BuddyFolders parse(const QString& text);
    // Empty folders are left out; the empty list is ":" alone, as the server writes it, so
    // that it can never be taken for a presence record.
    static QString serialise(const BuddyFolders& folders);
    // Where `name` is, letter case ignored: folder and position, or {-1, -1}.
    struct Position {
        int folder = -1;
        int index = -1;
        bool found() const { return folder >= 0; }
    };
    static Position find(const BuddyFolders& folders, const QString& name);
    static int findFolder(const BuddyFolders& folders, const QString& name);
};

}  // namespace tavren
