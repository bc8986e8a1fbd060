#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "server/rooms/ModerationStore.h"
#include "server/session/LoginGate.h"

namespace tavren::server {

// The bans and suspensions in force, over the moderation store: the store keeps them, this keeps
// the banned address ranges in memory as well, since every login and sign-up asks about them.
// A suspended account cannot log in; nobody but staff logs in or signs up from a banned range
// (so that staff behind the same proxy can still lift a ban they set by mistake).
class Sanctions : public LoginGate {
  public:
    explicit Sanctions(ModerationStore& store);

    ModerationStore& store() { return store_; }

    // The banned range holding the peer ("address:port"), or nothing.
    std::optional<std::string> bannedRangeOf(std::string_view peerAddress) const;
    void banRange(const std::string& range, const std::string& member, const Sanction& sanction);
    bool liftRange(const std::string& range);
    const std::vector<ListedSanction>& ranges() const { return ranges_; }

    std::string loginRefusal(const Account& account, std::string_view peerAddress) override;
    std::string signUpRefusal(std::string_view peerAddress) override;

  private:
    ModerationStore& store_;
    std::vector<ListedSanction> ranges_;
};

}  // namespace tavren::server
