#pragma once

#include <unordered_map>

#include "server/net/PresenceHub.h"

namespace tavren::server {

// The members online on this one server. Every join and every leave tells everyone online the new
// count with (1, 3), which the client shows as "Online: " in its status bar. A frame for many
// members is encoded once and shared by their queues.
class LocalPresenceHub : public PresenceHub {
  public:
    std::shared_ptr<ClientLink> join(const std::string& name,
                                     std::shared_ptr<ClientLink> link) override;
    void leave(const std::string& name, const ClientLink* link) override;
    std::size_t onlineCount() const override { return members_.size(); }
    bool isOnline(std::string_view name) const override;
    void broadcast(protocol::CodePair code, std::string_view payload) override;
    void sendTo(std::span<const std::string> names, protocol::CodePair code,
                std::string_view payload) override;

  private:
    void announceCount();
    std::shared_ptr<ClientLink> find(std::string_view name) const;

    std::unordered_map<std::string, std::shared_ptr<ClientLink>> members_;  // by lower-case name
};

}  // namespace tavren::server
