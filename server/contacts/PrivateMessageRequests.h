#pragma once

#include <string>
#include <string_view>

#include "server/base/ServerConfig.h"
#include "server/session/FeatureHandler.h"

namespace tavren::server {

class AccountStore;
class PresenceHub;

// Private messages (2, 8) and typing status (2, 16), from one member to another, through the hub.
//
// A message is relayed to the recipient as (2, 8) sender ":" text, the sender field as in channel
// lines; it shares the channels' line length and line bucket. Nothing is lost silently: a message
// that cannot be delivered (recipient offline or unknown, text too long, bucket empty) is answered
// with a private notice (2, 18) in the conversation with that recipient.
//
// Typing status is relayed as (2, 19) sender ":" code for the codes 1..4 only, costs no line, and
// is dropped without an answer when it cannot be delivered: it is stale a moment later anyway.
class PrivateMessageRequests : public FeatureHandler {
  public:
    PrivateMessageRequests(AccountStore& accounts, PresenceHub& hub, const RoomLimits& limits)
        : accounts_(accounts), hub_(hub), limits_(limits) {}

    std::vector<protocol::CodePair> requests() const override;
    asio::awaitable<void> handle(Member& member, protocol::CodePair code,
                                 std::string payload) override;

  private:
    void message(Member& member, const std::string& payload);
    void typing(Member& member, const std::string& payload);
    // (2, 18) recipient ":" text; the recipient as typed, cut and with control bytes shown as "?".
    static void tell(Member& member, std::string_view recipient, const std::string& text);

    AccountStore& accounts_;
    PresenceHub& hub_;
    const RoomLimits& limits_;
};

}  // namespace tavren::server
