#pragma once

#include <cstddef>

#include "server/session/FeatureHandler.h"

namespace tavren::server {

class PresenceService;

// Status lines (2, 1) from the client's console and away menu: "/help", "/away TEXT", "/back".
// Anything else is answered as an unknown command, so the console never talks into the void.
// Going away and coming back are part of the member's presence, which the watchers hear of; the
// away text goes to every one of them, so it is bounded.
class StatusLineRequests : public FeatureHandler {
  public:
    StatusLineRequests(PresenceService& presence, std::size_t maxAwayText)
        : presence_(presence), maxAwayText_(maxAwayText) {}

    std::vector<protocol::CodePair> requests() const override;
    asio::awaitable<void> handle(Member& member, protocol::CodePair code,
                                 std::string payload) override;

  private:
    PresenceService& presence_;
    std::size_t maxAwayText_;
};

}  // namespace tavren::server
