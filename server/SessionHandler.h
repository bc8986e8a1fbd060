#pragma once

#include <asio/awaitable.hpp>
#include <atomic>
#include <memory>
#include <optional>
#include <string>

#include "core/protocol/Frame.h"
#include "server/Account.h"
#include "server/ClientLink.h"
#include "server/ServerContext.h"

namespace tavren::server {

// What one client has said so far and what the server answers next: the version check, login,
// sign-up and the account requests of a logged-in member. The Connection hands it each frame in
// arrival order and waits for it, so the handler never sees two frames at once.
//
// Stages: waiting for the version; then either waiting for the credentials (after (1, 6), which is
// answered with the hello) or signing up (after (1, 4), answered by nothing until (3, 1)); then
// waiting for "OK" to the account data; then logged in. A frame that does not belong to the
// current stage is dropped with a log line.
class SessionHandler {
  public:
    SessionHandler(ServerContext& context, ClientLink& link);

    // The link as the presence hub should hold it; set by the Connection once it is shared.
    void setSharedLink(std::weak_ptr<ClientLink> link) { sharedLink_ = std::move(link); }

    asio::awaitable<void> handle(protocol::Frame frame);
    // The session is over (the connection is closing or gone): the member is no longer online,
    // and further frames are ignored. Safe to call more than once.
    void disconnected();

    bool loggedIn() const { return stage_ == Stage::kLoggedIn; }

  private:
    enum class Stage { kAwaitingVersion, kAwaitingCredentials, kSigningUp, kAwaitingOk, kLoggedIn };

    asio::awaitable<void> dispatch(protocol::Frame& frame);
    void onVersion(const protocol::Frame& frame);
    asio::awaitable<void> onCredentials(const std::string& payload);
    asio::awaitable<void> onSignUp(const std::string& payload);
    void onLoginConfirmed();
    asio::awaitable<void> onChangePassword(const std::string& payload);
    void onChangeEmail(const std::string& payload);
    void onNicknameFormat(const std::string& payload);
    void onStatusCommand(const std::string& payload);
    void refuseLogin(std::string_view name, std::string_view why);
    void refuseSignUp(std::string_view name, std::string_view why);
    void countFailure();
    void sendAccountData();
    void drop(const protocol::Frame& frame, std::string_view why);

    ServerContext& context_;
    ClientLink& link_;
    std::weak_ptr<ClientLink> sharedLink_;
    Stage stage_ = Stage::kAwaitingVersion;
    std::optional<Account> account_;
    int failures_ = 0;
    bool accountCreated_ = false;
    // Set once the session is over; also tells queued password work that nobody waits for it.
    std::shared_ptr<std::atomic<bool>> ended_ = std::make_shared<std::atomic<bool>>(false);
};

}  // namespace tavren::server
