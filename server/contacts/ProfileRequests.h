#pragma once

#include <string>

#include "server/base/ServerConfig.h"
#include "server/session/FeatureHandler.h"

namespace tavren::server {

class AccountStore;
class ProfileStore;

// Profile pages: (2, 10) keeps the member's own page (the empty text removes it), and (2, 11)
// NAME answers (2, 11) name ":" page, in the account's spelling, with a page made here for a
// member who has not written one. The page is the member's markup and is kept as sent; the
// client shows it in a pane that runs no script and fetches nothing.
class ProfileRequests : public FeatureHandler {
  public:
    ProfileRequests(AccountStore& accounts, ProfileStore& profiles, const DirectoryLimits& limits)
        : accounts_(accounts), profiles_(profiles), limits_(limits) {}

    std::vector<protocol::CodePair> requests() const override;
    asio::awaitable<void> handle(Member& member, protocol::CodePair code,
                                 std::string payload) override;

  private:
    void update(Member& member, const std::string& page);
    void view(Member& member, const std::string& requestedName);

    AccountStore& accounts_;
    ProfileStore& profiles_;
    const DirectoryLimits& limits_;
};

}  // namespace tavren::server
