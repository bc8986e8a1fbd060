#pragma once

#include "server/session/FeatureHandler.h"

namespace tavren::server {

// Status lines (2, 1) from the client's console and away menu: "/help", "/away TEXT", "/back".
// Anything else is answered as an unknown command, so the console never talks into the void.
class StatusLineRequests : public FeatureHandler {
  public:
    std::vector<protocol::CodePair> requests() const override;
    asio::awaitable<void> handle(Member& member, protocol::CodePair code,
                                 std::string payload) override;
};

}  // namespace tavren::server
