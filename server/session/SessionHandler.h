#pragma once

#include <asio/awaitable.hpp>
#include <atomic>
#include <memory>
#include <optional>
#include <string>

#include "core/protocol/Frame.h"
#include "server/accounts/Account.h"
#include "server/accounts/PasswordGate.h"
#include "server/net/ClientLink.h"
#include "server/net/FrameHandler.h"
#include "server/session/Member.h"
#include "server/session/SessionServices.h"

namespace tavren::server {

// What one client has said so far and what the server answers next: the version check, login and
// sign-up; once logged in, each request goes through the feature table to the feature that
// answers it.
//
// Stages: waiting for the version; then either waiting for the credentials (after (1, 6), which is
// answered with the hello) or signing up (after (1, 4), answered by nothing until (3, 1)); then
// waiting for "OK" to the account data; then logged in. A frame that does not belong to the
// current stage is dropped with a log line.
class SessionHandler : public FrameHandler {
  public:
    SessionHandler(const SessionServices& services, ClientLink& link,
                   std::weak_ptr<ClientLink> sharedLink);

    asio::awaitable<void> handle(protocol::Frame frame) override;
    // The session is over (the connection is closing or gone): the member leaves every feature and
    // is no longer online, and further frames are ignored. Safe to call more than once.
    void disconnected() override;
    bool loggedIn() const override { return stage_ == Stage::kLoggedIn; }
    bool authenticated() const override {
        return stage_ == Stage::kAwaitingOk || stage_ == Stage::kLoggedIn;
    }

  private:
    enum class Stage { kAwaitingVersion, kAwaitingCredentials, kSigningUp, kAwaitingOk, kLoggedIn };

    asio::awaitable<void> dispatch(protocol::Frame& frame);
    asio::awaitable<void> dispatchLoggedIn(protocol::Frame& frame);
    void onVersion(const protocol::Frame& frame);
    asio::awaitable<void> onCredentials(const std::string& payload);
    asio::awaitable<void> onSignUp(const std::string& payload);
    void onLoginConfirmed();
    // Answers a login that was not checked for load (busy, backing off); false when it was.
    bool refusedForLoad(const PasswordGate::Outcome& checked);
    void refuseLogin(std::string_view name, std::string_view why);
    void refuseSignUp(std::string_view name, std::string_view why);
    void countFailure();
    void drop(const protocol::Frame& frame, std::string_view why);

    const SessionServices& services_;
    ClientLink& link_;
    std::weak_ptr<ClientLink> sharedLink_;
    Stage stage_ = Stage::kAwaitingVersion;
    std::optional<Account> pendingAccount_;  // between the right password and "OK"
    std::optional<Member> member_;           // once logged in
    int failures_ = 0;
    bool accountCreated_ = false;
    // Set once the session is over; also tells queued password work that nobody waits for it.
    std::shared_ptr<std::atomic<bool>> ended_ = std::make_shared<std::atomic<bool>>(false);
};

}  // namespace tavren::server
