#include "core/ClientSession.h"

#include "core/protocol/Catalogue.h"

namespace tavren {

ClientSession::ClientSession(const QString& dataRoot, AutostartRegistrar* autostart,
                             Prompter& prompter, QObject* parent)
    : QObject(parent),
      dataRoot_(dataRoot),
      store_(),
      settings_(store_, dataRoot, autostart),
      files_(dataRoot),
      sounds_(settings_),
      server_(settings_, prompter),
      awayStatus_(server_.link()) {
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
