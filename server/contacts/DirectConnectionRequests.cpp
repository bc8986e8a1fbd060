#include "server/contacts/DirectConnectionRequests.h"

#include <algorithm>
#include <optional>
#include <span>

#include "core/protocol/Catalogue.h"
#include "core/protocol/Fields.h"
#include "server/accounts/AccountRules.h"
#include "server/accounts/AccountStore.h"
#include "server/base/AsciiText.h"
#include "server/contacts/RequesterAddress.h"
#include "server/net/PresenceHub.h"
#include "server/rooms/ChannelRules.h"
#include "server/session/Member.h"
#include "tls/CertificateFingerprint.h"

namespace tavren::server {

namespace in = protocol::client_to_server;
namespace out = protocol::server_to_client;

namespace {

constexpr char kRequest = '1';
constexpr char kCancel = '2';
constexpr char kError = '3';
constexpr char kAbort = '4';
constexpr char kAccept = '5';
constexpr char kFingerprint = '6';

std::optional<std::string> portArgument(std::string_view argument) {
    if (argument.empty() || argument.size() > 5 ||
        !std::all_of(argument.begin(), argument.end(),
                     [](char c) { return c >= '0' && c <= '9'; })) {
        return std::nullopt;
    }
    const int port = std::stoi(std::string(argument));
    if (port > 65535) {
        return std::nullopt;
    }
    return std::to_string(port);
}

}  // namespace

std::vector<protocol::CodePair> DirectConnectionRequests::requests() const {
    return {in::kDirectConnection};
}

asio::awaitable<void> DirectConnectionRequests::handle(Member& member, protocol::CodePair,
                                                       std::string payload) {
    relay(member, payload);
    co_return;
}

void DirectConnectionRequests::memberLeft(Member& member) {
    handshakes_.erase(member.sessionId);
    fingerprints_.erase(member.sessionId);
}

std::optional<std::string> DirectConnectionRequests::relayedArgument(char kind,
                                                                     std::string_view argument) {
    switch (kind) {
        case kRequest:
        case kAccept:
            // The port the sender listens on; 0 when it cannot take connections and the other
            // side must listen instead.
            return portArgument(argument);
        case kCancel:
        case kAbort:
            return std::string("0");
        case kError: {
            std::string reason(argument.substr(0, kMaxReason));
            for (char& c : reason) {
                const auto byte = static_cast<unsigned char>(c);
                if (byte < 32 || byte == 127) {
                    c = '?';
                } else if (c == ':') {
                    // The address follows the reason: a ":" here would move it.
                    c = '.';
                }
            }
            return reason;
        }
        case kFingerprint: {
            // Exactly as clients write it (the peer compares it character for character).
            const auto normal = tls::CertificateFingerprint::normalise(argument);
            if (!normal || *normal != argument) {
                return std::nullopt;
            }
            return *normal;
        }
        default:
            return std::nullopt;
    }
}

bool DirectConnectionRequests::takeHandshake(Member& member) {
    const auto now = LineBucket::Clock::now();
    auto found = handshakes_.find(member.sessionId);
    if (found == handshakes_.end()) {
        const int perMinute = std::max(1, limits_.handshakesPerMinute);
        found =
            handshakes_
                .emplace(member.sessionId,
                         LineBucket(perMinute, std::chrono::milliseconds(60000) / perMinute, now))
                .first;
    }
    return found->second.take(now);
}

void DirectConnectionRequests::relay(Member& member, const std::string& payload) {
    const auto fields = protocol::SplitFields(payload, protocol::kFieldSeparator, 3);
    const std::string peer(protocol::FieldAt(fields, 0));
    const std::string_view kindField = protocol::FieldAt(fields, 1);
    if (kindField.size() != 1) {
        return;
    }
    const char kind = kindField.front();
    const auto argument = relayedArgument(kind, protocol::FieldAt(fields, 2));
    if (!argument) {
        return;
    }
    const auto kept = fingerprints_.find(member.sessionId);
    if (kind == kFingerprint) {
        // Goes with the member's next handshake, if that is a request or accept to this peer.
        if (AccountRules::checkName(peer).empty()) {
            fingerprints_[member.sessionId] = {peer, *argument};
        } else if (kept != fingerprints_.end()) {
            fingerprints_.erase(kept);
        }
        return;
    }
    std::string fingerprint;
    if (kept != fingerprints_.end()) {
        if ((kind == kRequest || kind == kAccept) &&
            AsciiText::equalNoCase(kept->second.peer, peer)) {
            fingerprint = std::move(kept->second.fingerprint);
        }
        fingerprints_.erase(kept);
    }
    const bool wantsAnswer = kind == kRequest || kind == kAccept;
    if (!takeHandshake(member)) {
        tell(member, peer,
             "You are asking for direct connections too fast. Wait a moment, then try again.");
        return;
    }
    const bool possibleName = AccountRules::checkName(peer).empty();
    if (possibleName && hub_.isOnline(peer)) {
        const std::string address = RequesterAddress::fromPeer(member.link.peerAddress());
        if (!fingerprint.empty()) {
            hub_.sendTo(std::span(&peer, 1), out::kDirectConnection,
                        member.name() + ":6:" + fingerprint + ":" + address);
        }
        std::string relayed = member.name();
        relayed += ':';
        relayed += kind;
        relayed += ':';
        relayed += *argument;
        relayed += ':';
        relayed += address;
        hub_.sendTo(std::span(&peer, 1), out::kDirectConnection, relayed);
        return;
    }
    if (!wantsAnswer) {
        return;
    }
    if (!possibleName || !accounts_.findByName(peer)) {
        tell(member, peer, "There is no member called " + ChannelRules::echo(peer) + ".");
        return;
    }
    tell(member, peer,
         ChannelRules::echo(peer) + " is offline; the direct connection was not set up.");
}

void DirectConnectionRequests::tell(Member& member, std::string_view peer,
                                    const std::string& text) {
    member.link.send(out::kPrivateNotice, ChannelRules::echo(peer) + ":" + text);
}

}  // namespace tavren::server
