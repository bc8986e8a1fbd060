#pragma once

#include "server/session/FeatureHandler.h"

namespace tavren::server {

// The member's inbox. No mail is kept yet, so every inbox is empty; the client still asks after
// login and whenever it is told of new mail, and must get its answer.
class MailboxRequests : public FeatureHandler {
  public:
    std::vector<protocol::CodePair> requests() const override;
    asio::awaitable<void> handle(Member& member, protocol::CodePair code,
                                 std::string payload) override;
};

}  // namespace tavren::server
