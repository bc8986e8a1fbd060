#pragma once

#include <string>

#include "server/session/FeatureHandler.h"

namespace tavren::server {

class AccountStore;
class PresenceHub;
class RoomService;

// "Where is NAME?" (2, 9), answered with one sentence (2, 9): "bob is Online in channel(s): A, B",
// "bob is Online but not in a channel", "bob is Offline", or "There is no member called bob.".
// The name is the account's spelling when the member exists.
class LocateRequests : public FeatureHandler {
  public:
    LocateRequests(AccountStore& accounts, PresenceHub& hub, const RoomService& rooms)
        : accounts_(accounts), hub_(hub), rooms_(rooms) {}

    std::vector<protocol::CodePair> requests() const override;
    asio::awaitable<void> handle(Member& member, protocol::CodePair code,
                                 std::string payload) override;

  private:
    std::string answer(const std::string& requestedName);

    AccountStore& accounts_;
    PresenceHub& hub_;
    const RoomService& rooms_;
};

}  // namespace tavren::server
