#include "contacts/BuddyList.h"

#include "config/SoundPlayer.h"
#include "config/SoundSlots.h"
#include "contacts/BuddyListText.h"
#include "contacts/BuddyNames.h"
#include "core/ServerSession.h"
#include "core/protocol/Catalogue.h"

namespace tavren {

namespace in = protocol::server_to_client;
namespace out = protocol::client_to_server;

BuddyList::BuddyList(ServerSession& server, SettingsStore& store, SoundPlayer& sounds,
                     QObject* parent)
    : QObject(parent),
      server_(server),
      store_(store),
      sounds_(sounds),
      options_(BuddyListOptions::load(store)) {
    server_.dispatcher().route(in::kBuddyPresence,
                               [this](const ServerMessage& message) { onBuddyMessage(message); });
    connect(&server_, &ServerSession::onlineChanged, this, &BuddyList::onLinkState);
}

bool BuddyList::contains(const QString& name) const {
    return presence_.contains(name.trimmed().toLower());
}

QString BuddyList::spelling(const QString& name) const {
    const BuddyListText::Position at = BuddyListText::find(folders_, name.trimmed());
    if (!at.found()) {
        return QString();
    }
    return folders_[static_cast<std::size_t>(at.folder)].buddies[at.index];
}

BuddyPresence BuddyList::presence(const QString& name) const {
    return presence_.value(name.trimmed().toLower());
}

QString BuddyList::tooltip(const QString& name) const {
    const QString listed = spelling(name);
    return presence(name).tooltip(listed.isEmpty() ? name : listed);
}

int BuddyList::onlineCount(const BuddyFolder& folder) const {
    int online = 0;
    for (const QString& name : folder.buddies) {
        online += presence(name).online ? 1 : 0;
    }
    return online;
}

QString BuddyList::folderCaption(const BuddyFolder& folder) const {
    return QStringLiteral("%1 (%2/%3)")
        .arg(folder.name)
        .arg(onlineCount(folder))
        .arg(folder.buddies.size());
}

bool BuddyList::online() const {
    return server_.online();
}

QString BuddyList::caption() const {
    if (!server_.online()) {
        return QStringLiteral("Buddies (0)");
    }
    return server_.login().userName() + QStringLiteral("'s Buddylist");
}

void BuddyList::setOptions(const BuddyListOptions& options) {
    options_ = options;
    options_.save(store_);
    emit optionsChanged();
}

void BuddyList::addBuddy(const QString& name) {
    const QString clean = name.trimmed();
    if (!server_.online() || !BuddyNames::isUserName(clean) || contains(clean)) {
        return;
    }
    BuddyFolders next = folders_;
    const int folder = BuddyListText::findFolder(next, BuddyNames::defaultFolder());
    if (folder < 0) {
        next.push_back(BuddyFolder{BuddyNames::defaultFolder(), {clean}});
    } else {
        next[static_cast<std::size_t>(folder)].buddies << clean;
    }
    rebuild(next);
    server_.link().SendPacket(clean, out::kAddBuddy);
}

bool BuddyList::removeBuddy(const QString& name) {
    const BuddyListText::Position at = BuddyListText::find(folders_, name.trimmed());
    if (!server_.online() || !at.found()) {
        return false;
    }
    BuddyFolders next = folders_;
    next[static_cast<std::size_t>(at.folder)].buddies.removeAt(at.index);
    rebuild(next);
    send();
    return true;
}

bool BuddyList::moveBuddy(const QString& name, const QString& folder) {
    const BuddyListText::Position at = BuddyListText::find(folders_, name.trimmed());
    if (!server_.online() || !at.found() || !BuddyNames::isFolderName(folder)) {
        return false;
    }
    BuddyFolders next = folders_;
    const QString moved = next[static_cast<std::size_t>(at.folder)].buddies.takeAt(at.index);
    const int target = BuddyListText::findFolder(next, folder);
    if (target < 0) {
        next.push_back(BuddyFolder{folder, {moved}});
    } else {
        next[static_cast<std::size_t>(target)].buddies << moved;
    }
    rebuild(next);
    send();
    return true;
}

bool BuddyList::replace(const BuddyFolders& folders) {
    if (!server_.online()) {
        return false;
    }
    rebuild(folders);
    send();
    return true;
}

QString BuddyList::serialised() const {
    return BuddyListText::serialise(folders_);
}

void BuddyList::send() {
    server_.link().SendPacket(serialised(), out::kEditBuddyList);
}

void BuddyList::onBuddyMessage(const ServerMessage& message) {
    if (message.payload.contains(QLatin1Char(':'))) {
        rebuild(BuddyListText::parse(message.payload));
        return;
    }
    if (const auto record = PresenceRecord::parse(message.payload)) {
        updatePresence(*record);
    }
}

void BuddyList::rebuild(const BuddyFolders& folders) {
    // Through the wire form and back: whatever the source, the list holds no empty folder, no
    // name twice and nothing the server would refuse.
    folders_ = BuddyListText::parse(BuddyListText::serialise(folders));
    QHash<QString, BuddyPresence> kept;
    for (const BuddyFolder& folder : folders_) {
        for (const QString& name : folder.buddies) {
            const QString key = name.toLower();
            kept.insert(key, presence_.value(key));
        }
    }
    presence_ = std::move(kept);
    emit listChanged();
}

void BuddyList::updatePresence(const PresenceRecord& record) {
    const QString key = record.name.toLower();
    const auto found = presence_.find(key);
    if (found == presence_.end() || *found == record.presence) {
        return;
    }
    const BuddyPresence before = *found;
    *found = record.presence;
    const QString name = spelling(record.name);
    emit presenceChanged(name);
    if (!before.known || before.online == record.presence.online) {
        return;
    }
    const bool online = record.presence.online;
    emit buddyOnlineChanged(name, online);
    if (options_.playSounds) {
        const int slot = online ? SoundSlots::BuddyOnline : SoundSlots::BuddyOffline;
        emit soundRequested(slot);
        sounds_.play(slot);
    }
    if (online && options_.notifyOnline) {
        emit buddyOnlineNotice(name);
    }
}

void BuddyList::onLinkState(bool online) {
    if (!online) {
        // The server sends the whole list again at the next login; until then nothing about
        // anyone's presence can be trusted. No buddy "goes offline" here: the member did.
        folders_.clear();
        presence_.clear();
        emit listChanged();
    }
    emit captionChanged(caption());
}

}  // namespace tavren
