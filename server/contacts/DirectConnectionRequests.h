#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "server/base/ServerConfig.h"
#include "server/session/FeatureHandler.h"
#include "server/session/LineBucket.h"

namespace tavren::server {

class AccountStore;
class PresenceHub;

// The handshake of a direct connection between two members (2, 15), relayed to the other member
// only. The server takes no part in the connection itself: it passes on who listens on which
// port, accept, cancel, error and abort, and adds what only it knows, the requester's address.
//
// (2, 15) peer ":" kind ":" argument goes to the peer as (2, 17) sender ":" kind ":" argument ":"
// address (RequesterAddress). Arguments are checked per kind so that the peer can always split
// the four fields: a port (0..65535) for a request and an accept, "0" for a cancel or abort, a
// reason of at most 200 bytes without ":" or control bytes for an error.
//
// A request or an accept that cannot reach its peer (offline, no such member) is answered with a
// private notice (2, 18) in the conversation with that peer; a cancel, error or abort is dropped
// silently, since the conversation that sent it may be closing. Each member may send
// `handshakesPerMinute` handshakes a minute (a burst of that many, then one every 60/N s); one
// over the bound is answered with a notice and not relayed.
//
// Kind 6 announces the sender's certificate fingerprint for the request or accept that follows.
// It is not relayed on its own: the server keeps it (one per member) and sends it to the peer
// right before that request or accept, within the same bound, or drops it when the member's next
// handshake is anything else. So it costs no handshake of its own, a flood of them sends nothing
// anywhere, and a request never arrives without the fingerprint that was sent for it.
class DirectConnectionRequests : public FeatureHandler {
  public:
    // The longest error reason relayed; longer ones are cut.
    static constexpr std::size_t kMaxReason = 200;

    DirectConnectionRequests(AccountStore& accounts, PresenceHub& hub, const ContactLimits& limits)
        : accounts_(accounts), hub_(hub), limits_(limits) {}

    std::vector<protocol::CodePair> requests() const override;
    asio::awaitable<void> handle(Member& member, protocol::CodePair code,
                                 std::string payload) override;
    void memberLeft(Member& member) override;

    // The argument as relayed for `kind` ('1'..'6'), or nothing when it is not acceptable.
    static std::optional<std::string> relayedArgument(char kind, std::string_view argument);

  private:
    void relay(Member& member, const std::string& payload);
    bool takeHandshake(Member& member);
    static void tell(Member& member, std::string_view peer, const std::string& text);

    AccountStore& accounts_;
    PresenceHub& hub_;
    const ContactLimits& limits_;
    // Per login (session id): the handshakes the member may still send in a burst.
    std::unordered_map<std::uint64_t, LineBucket> handshakes_;
    // Per login: the fingerprint announced for the member's next handshake, and to whom.
    struct Announced {
        std::string peer;
        std::string fingerprint;
    };
    std::unordered_map<std::uint64_t, Announced> fingerprints_;
};

}  // namespace tavren::server
