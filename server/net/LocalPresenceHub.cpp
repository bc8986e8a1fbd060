#include "server/net/LocalPresenceHub.h"

#include <utility>
#include <vector>

#include "core/protocol/Catalogue.h"
#include "core/protocol/Frame.h"
#include "server/base/AsciiText.h"

namespace tavren::server {

namespace {

SharedFrame encode(protocol::CodePair code, std::string_view payload) {
    return std::make_shared<const std::string>(protocol::EncodeFrame(code, payload));
}

}  // namespace

std::shared_ptr<ClientLink> LocalPresenceHub::join(const std::string& name,
                                                   std::shared_ptr<ClientLink> link) {
    auto& slot = members_[AsciiText::lower(name)];
    std::shared_ptr<ClientLink> previous = std::exchange(slot, std::move(link));
    // Announced even when the count stays (a second login replacing the first), so that the
    // newcomer always learns it.
    announceCount(slot.get());
    return previous;
}

void LocalPresenceHub::leave(const std::string& name, const ClientLink* link) {
    const auto member = members_.find(AsciiText::lower(name));
    if (member != members_.end() && member->second.get() == link) {
        members_.erase(member);
        announceCount(nullptr);
    }
}

bool LocalPresenceHub::isOnline(std::string_view name) const {
    return find(name) != nullptr;
}

std::shared_ptr<ClientLink> LocalPresenceHub::find(std::string_view name) const {
    const auto member = members_.find(AsciiText::lower(name));
    return member == members_.end() ? nullptr : member->second;
}

void LocalPresenceHub::broadcast(protocol::CodePair code, std::string_view payload) {
    // Links hand a dropped client back to the event loop rather than leaving here at once, but a
    // walk over a copy stays correct whatever a link does.
    std::vector<std::shared_ptr<ClientLink>> links;
    links.reserve(members_.size());
    for (const auto& member : members_) {
        links.push_back(member.second);
    }
    const SharedFrame frame = encode(code, payload);
    for (const auto& link : links) {
        link->sendFrame(frame);
    }
}

void LocalPresenceHub::sendTo(std::span<const std::string> names, protocol::CodePair code,
                              std::string_view payload) {
    const SharedFrame frame = encode(code, payload);
    for (const std::string& name : names) {
        if (const auto link = find(name)) {
            link->sendFrame(frame);
        }
    }
}

void LocalPresenceHub::announceCount(ClientLink* newcomer) {
    constexpr auto kCount = protocol::server_to_client::kOnlineCount;
    if (!countTimer_ || members_.size() < kCountAtOnceBelow) {
        broadcast(kCount, std::to_string(members_.size()));
        return;
    }
    if (newcomer) {
        newcomer->send(kCount, std::to_string(members_.size()));
    }
    if (countPending_) {
        return;
    }
    countPending_ = true;
    countTimer_->expires_after(countInterval_);
    countTimer_->async_wait([this](const asio::error_code& error) {
        countPending_ = false;
        if (!error) {
            broadcast(kCount, std::to_string(members_.size()));
        }
    });
}

}  // namespace tavren::server
