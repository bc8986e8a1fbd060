#include "server/LocalPresenceHub.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "core/protocol/Catalogue.h"

namespace tavren::server {

namespace {

std::string lowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return text;
}

}  // namespace

std::shared_ptr<ClientLink> LocalPresenceHub::join(const std::string& name,
                                                   std::shared_ptr<ClientLink> link) {
    auto& slot = members_[lowerCase(name)];
    std::shared_ptr<ClientLink> previous = std::exchange(slot, std::move(link));
    // Announced even when the count stays (a second login replacing the first), so that the
    // newcomer always learns it.
    announceCount();
    return previous;
}

void LocalPresenceHub::leave(const std::string& name, const ClientLink* link) {
    const auto member = members_.find(lowerCase(name));
    if (member != members_.end() && member->second.get() == link) {
        members_.erase(member);
        announceCount();
    }
}

void LocalPresenceHub::broadcast(protocol::CodePair code, std::string_view payload) {
    // A send may drop a slow client, which leaves the hub while we walk it: walk a copy.
    std::vector<std::shared_ptr<ClientLink>> links;
    links.reserve(members_.size());
    for (const auto& member : members_) {
        links.push_back(member.second);
    }
    for (const auto& link : links) {
        link->send(code, payload);
    }
}

void LocalPresenceHub::announceCount() {
    broadcast(protocol::server_to_client::kOnlineCount, std::to_string(members_.size()));
}

}  // namespace tavren::server
