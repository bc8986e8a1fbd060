#pragma once

#include <string>

#include "server/session/FeatureHandler.h"

namespace tavren::server {

struct Account;
class AccountStore;
class PasswordGate;

// A logged-in member's own account: change the password or the e-mail address, ask for the
// address, save the nickname format. Every change is checked against the account rules and kept
// in the store before it is confirmed.
class AccountRequests : public FeatureHandler {
  public:
    AccountRequests(AccountStore& accounts, PasswordGate& passwords)
        : accounts_(accounts), passwords_(passwords) {}

    // (1, 5): name ";" staff level ";" nickname format, sent at login and after a format change.
    static std::string refreshPayload(const Account& account);

    std::vector<protocol::CodePair> requests() const override;
    asio::awaitable<void> handle(Member& member, protocol::CodePair code,
                                 std::string payload) override;

  private:
    asio::awaitable<void> changePassword(Member& member, const std::string& payload);
    void changeEmail(Member& member, const std::string& payload);
    void saveNicknameFormat(Member& member, const std::string& payload);

    AccountStore& accounts_;
    PasswordGate& passwords_;
};

}  // namespace tavren::server
