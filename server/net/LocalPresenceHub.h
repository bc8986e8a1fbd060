#pragma once

#include <asio/any_io_executor.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <memory>
#include <unordered_map>

#include "server/net/PresenceHub.h"

namespace tavren::server {

// The members online on this one server. Every join and every leave tells everyone online the new
// count with (1, 3), which the client shows as "Online: " in its status bar. A frame for many
// members is encoded once and shared by their queues.
//
// With `kCountAtOnceBelow` members or more online (and an executor to time it), the count goes to
// everyone at most once per `countInterval`: otherwise N members logging in would cost N² frames.
// The member who logs in always hears the count at once.
class LocalPresenceHub : public PresenceHub {
  public:
    static constexpr std::size_t kCountAtOnceBelow = 64;

    LocalPresenceHub() = default;
    explicit LocalPresenceHub(asio::any_io_executor executor,
                              std::chrono::milliseconds countInterval = std::chrono::seconds(1))
        : countTimer_(std::make_unique<asio::steady_timer>(std::move(executor))),
          countInterval_(countInterval) {}

    std::shared_ptr<ClientLink> join(const std::string& name,
                                     std::shared_ptr<ClientLink> link) override;
    void leave(const std::string& name, const ClientLink* link) override;
    std::size_t onlineCount() const override { return members_.size(); }
    bool isOnline(std::string_view name) const override;
    void broadcast(protocol::CodePair code, std::string_view payload) override;
    void sendTo(std::span<const std::string> names, protocol::CodePair code,
                std::string_view payload) override;

  private:
    void announceCount(ClientLink* newcomer);
    std::shared_ptr<ClientLink> find(std::string_view name) const;

    std::unordered_map<std::string, std::shared_ptr<ClientLink>> members_;  // by lower-case name
    std::unique_ptr<asio::steady_timer> countTimer_;  // none: every count goes out at once
    std::chrono::milliseconds countInterval_{1000};
    bool countPending_ = false;
};

}  // namespace tavren::server
