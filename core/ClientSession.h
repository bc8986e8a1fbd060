#pragma once

#include <QObject>
#include <QString>
#include <memory>

#include "config/Settings.h"
#include "config/SettingsStore.h"
#include "config/SoundPlayer.h"
#include "contacts/BuddyList.h"
#include "contacts/DataFiles.h"
#include "contacts/Mailbox.h"
#include "contacts/MemberSearch.h"
#include "contacts/Profiles.h"
#include "core/AwayStatus.h"
#include "core/MemberLocator.h"
#include "core/ServerSession.h"
#include "pm/DirectLinks.h"
#include "pm/PrivateChats.h"
#include "render/ChatLineFormatter.h"
#include "rooms/RoomSession.h"
#include "web/WebServices.h"

namespace tavren {

class AutostartRegistrar;
class Prompter;

// The session-side objects of one running client, owned in one place and handed to the windows
// by reference: the settings, the three data files, the sound player, the server session, the
// away state, the chat-line formatter every pane shares, and the channels.
class ClientSession : public QObject {
    Q_OBJECT
  public:
    // `autostart` may be null (tests): saving the settings then leaves the OS start-up list alone.
    // `prompter` answers the questions the session layer asks (connection errors, sign-up).
    ClientSession(const QString& dataRoot, AutostartRegistrar* autostart, Prompter& prompter,
                  QObject* parent = nullptr);
    // A client whose settings live in an INI file of its own, with its own connection timing:
    // several such clients can run side by side in one process (tests, tools).
    ClientSession(const QString& dataRoot, const QString& settingsFile,
                  const ConnectionOptions& options, Prompter& prompter, QObject* parent = nullptr);

    QString dataRoot() const { return dataRoot_; }

    SettingsStore& store() { return *store_; }
    Settings& settings() { return settings_; }
    DataFiles& dataFiles() { return files_; }
    AwayMessages& awayMessages() { return files_.away(); }
    IgnoreList& ignoreList() { return files_.ignore(); }
    PerformList& performList() { return files_.perform(); }
    SoundPlayer& sounds() { return sounds_; }
    ServerSession& server() { return server_; }
    AwayStatus& awayStatus() { return awayStatus_; }
    const ChatLineFormatter& formatter() const { return formatter_; }
    RoomSession& rooms() { return rooms_; }
    const RoomSession& rooms() const { return rooms_; }
    BuddyList& buddies() { return buddies_; }
    MemberLocator& locator() { return locator_; }
    PrivateChats& privateChats() { return privateChats_; }
    DirectLinks& directLinks() { return directLinks_; }
    Mailbox& mailbox() { return mailbox_; }
    MemberSearch& memberSearch() { return memberSearch_; }
    Profiles& profiles() { return profiles_; }
    WebServices& web() { return web_; }

  private:
    ClientSession(const QString& dataRoot, std::unique_ptr<SettingsStore> store,
                  AutostartRegistrar* autostart, const ConnectionOptions& options,
                  Prompter& prompter, QObject* parent);

    QString dataRoot_;
    std::unique_ptr<SettingsStore> store_;
    Settings settings_;
    DataFiles files_;
    SoundPlayer sounds_;
    ServerSession server_;
    AwayStatus awayStatus_;
    ChatLineFormatter formatter_;
    RoomSession rooms_;
    BuddyList buddies_;
    MemberLocator locator_;
    PrivateChats privateChats_;
    DirectLinks directLinks_;
    Mailbox mailbox_;
    MemberSearch memberSearch_;
    Profiles profiles_;
    WebServices web_;
};

}  // namespace tavren
