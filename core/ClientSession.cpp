#include "core/ClientSession.h"

#include "config/SoundSlots.h"
#include "core/protocol/Catalogue.h"
#include "render/LineOptions.h"

namespace tavren {

ClientSession::ClientSession(const QString& dataRoot, AutostartRegistrar* autostart,
                             Prompter& prompter, QObject* parent)
    : ClientSession(dataRoot, std::make_unique<SettingsStore>(), autostart,
                    ConnectionOptions::deployment(), prompter, parent) {}

ClientSession::ClientSession(const QString& dataRoot, const QString& settingsFile,
                             const ConnectionOptions& options, Prompter& prompter, QObject* parent)
    : ClientSession(dataRoot, std::make_unique<SettingsStore>(settingsFile), nullptr, options,
                    prompter, parent) {}

ClientSession::ClientSession(const QString& dataRoot, std::unique_ptr<SettingsStore> store,
                             AutostartRegistrar* autostart, const ConnectionOptions& options,
                             Prompter& prompter, QObject* parent)
    : QObject(parent),
      dataRoot_(dataRoot),
      store_(std::move(store)),
      settings_(*store_, dataRoot, autostart),
      files_(dataRoot),
      sounds_(settings_),
      server_(settings_, prompter, options),
      awayStatus_(server_.link()),
      formatter_(LineOptions::fromSettings(settings_.values(), dataRoot)),
      rooms_(server_, settings_, sounds_, files_.ignore(), files_.perform(), formatter_),
      buddies_(server_, *store_, sounds_),
      locator_(server_.link()),
      privateChats_(server_, settings_, sounds_, files_.ignore(), awayStatus_, rooms_, formatter_,
                    prompter),
      directLinks_(server_, settings_, privateChats_, formatter_, prompter, dataRoot),
      mailbox_(server_),
      memberSearch_(server_),
      profiles_(server_),
      web_(settings_, server_, rooms_) {
    server_.dispatcher().route(protocol::server_to_client::kLocateResult,
                               [this](const ServerMessage& m) { locator_.onLocateResult(m); });
    // Conversations know who is a buddy, and say when their member comes and goes.
    privateChats_.setBuddyDirectory(&buddies_);
    connect(&buddies_, &BuddyList::buddyOnlineChanged, &privateChats_,
            &PrivateChats::showPresenceNotice);
    // Lines are formatted with the settings of the moment they arrive.
    connect(&settings_, &Settings::changed, this, [this] {
        formatter_.setOptions(LineOptions::fromSettings(settings_.values(), dataRoot_));
    });
    connect(&server_.login(), &LoginFlow::loginAccepted, this,
            [this] { sounds_.play(SoundSlots::ServerLogin); });
    connect(&server_.connection(), &ServerConnection::wentOffline, this,
            [this](bool) { sounds_.play(SoundSlots::ServerLogoff); });
    connect(&server_, &ServerSession::noticeArrived, this,
            [this] { sounds_.play(SoundSlots::ErrorMessage); });
    server_.dispatcher().route(
        protocol::server_to_client::kAwayMenu,
        [this](const ServerMessage& message) { awayStatus_.onAwayState(message); });
    // Every session starts back; the server only reports changes.
    connect(&server_, &ServerSession::onlineChanged, &awayStatus_, [this](bool online) {
        if (!online) {
            awayStatus_.reset();
        }
    });
}

}  // namespace tavren
