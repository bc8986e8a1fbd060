#pragma once

#include <QHash>
#include <QObject>
#include <QString>

#include "contacts/BuddyFolder.h"
#include "contacts/BuddyListOptions.h"
#include "contacts/BuddyPresence.h"
#include "core/ServerMessage.h"
#include "pm/BuddyDirectory.h"

namespace tavren {

class ServerSession;
class SettingsStore;
class SoundPlayer;

// The member's buddy list as the server keeps it: folders of buddies in order, and what each
// buddy is doing. The server sends the whole list after login and after every edit, then one
// presence record per buddy, then a record whenever a buddy's presence changes; the client
// sends the whole list back after each edit. The main window's tree and the editor show this
// state; nothing here needs a widget.
//
// A record for a name that is not in the list is dropped: the list always comes first, and a
// record that crosses an edit on the wire must not bring back a buddy the member just removed.
// A record finds its buddy by name alone, so one that crosses a move still finds it.
class BuddyList : public QObject, public BuddyDirectory {
    Q_OBJECT
  public:
    BuddyList(ServerSession& server, SettingsStore& store, SoundPlayer& sounds,
              QObject* parent = nullptr);

    const BuddyFolders& folders() const { return folders_; }
    bool contains(const QString& name) const override;
    // The name as the list spells it (the account's spelling), or empty.
    QString spelling(const QString& name) const;
    // What is known of a buddy; an unknown name reads as offline.
    BuddyPresence presence(const QString& name) const;
    BuddyPresence::Image image(const QString& name) const { return presence(name).image(); }
    QString tooltip(const QString& name) const;

    int onlineCount(const BuddyFolder& folder) const;
    // "Work (1/2)": online buddies and all buddies of the folder.
    QString folderCaption(const BuddyFolder& folder) const;
    // The member's name + "'s Buddylist" while online, "Buddies (0)" offline.
    QString caption() const;
    // Whether the list is the server's of this session (offline it is empty and edits wait).
    bool online() const;

    const BuddyListOptions& options() const { return options_; }
    // Keeps the options in the settings store; emits optionsChanged().
    void setOptions(const BuddyListOptions& options);

    // Edits. Each one changes the list at once and sends the whole of it; all refuse, changing
    // nothing, while offline or when the edit makes no sense (a name that is not a member's,
    // one already listed, an unknown buddy or folder).
    //
    // A new buddy goes to the default folder through the server's own add (2, 14), so that it
    // lands there even if a list from another login of the account crosses this one.
    void addBuddy(const QString& name) override;
    bool removeBuddy(const QString& name);
    bool moveBuddy(const QString& name, const QString& folder);
    // The editor's whole list. Buddies keep their presence; new ones wait for their record.
    bool replace(const BuddyFolders& folders);
    // The list as it is sent.
    QString serialised() const;

    // (2, 13) from the server: with ":" the whole list, without it one presence record.
    void onBuddyMessage(const ServerMessage& message);

  signals:
    // Folders or buddies were added, removed or moved; the tree rebuilds.
    void listChanged();
    // One buddy's picture or tooltip may have changed.
    void presenceChanged(const QString& name);
    // A buddy came online or went offline (not the records that follow a new list).
    void buddyOnlineChanged(const QString& name, bool online);
    // A buddy came online and the member asked to be told (the tray notice).
    void buddyOnlineNotice(const QString& name);
    void captionChanged(const QString& caption);
    void optionsChanged();
    // A buddy sound was asked of the sound player (the player decides whether it plays).
    void soundRequested(int slot);

  private:
    void onLinkState(bool online);
    void rebuild(const BuddyFolders& folders);
    void updatePresence(const PresenceRecord& record);
    void send();

    ServerSession& server_;
    SettingsStore& store_;
    SoundPlayer& sounds_;
    BuddyListOptions options_;
    BuddyFolders folders_;
    // By lower-case name; only buddies that are in the list.
    QHash<QString, BuddyPresence> presence_;
};

}  // namespace tavren
