#pragma once

#include <asio/any_io_executor.hpp>
#include <asio/awaitable.hpp>
#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>

#include "server/accounts/FailureLedger.h"
#include "server/accounts/PasswordQueue.h"
#include "server/accounts/PasswordWorker.h"
#include "server/base/ServerConfig.h"
#include "server/net/GroupRateLimiter.h"

namespace tavren::server {

// Every password check and hash of the server passes here, so that nobody can use them to slow
// down everyone else or to guess at full speed:
// - an address group that failed too often waits before its next try (FailureLedger), and so does
//   an account name that failed too often, except from an address group that has logged in to it
//   before (so that strangers guessing a member's password do not lock the member out at home);
// - checks take turns between address groups and are capped per group and in all (PasswordQueue);
//   a check that does not fit is refused at once as "busy" instead of waiting without bound;
// - sign-ups are rationed per address group (whether they create an account or find the name
//   taken, so that probing names costs as much as creating accounts).
// Used on the network thread; the hashing itself runs on the password worker's thread.
class PasswordGate {
  public:
    using Clock = FailureLedger::Clock;
    using CancelFlag = PasswordWorker::CancelFlag;

    struct Outcome {
        enum class Kind {
            kAccepted,  // the password is right
            kRefused,   // wrong password, or no such account
            kBusy,      // too many checks waiting; nothing was checked
            kWait,      // backing off; nothing was checked
        };
        Kind kind = Kind::kRefused;
        Clock::duration wait{};  // kWait: how long
    };

    PasswordGate(PasswordWorker& worker, const PasswordLimits& limits,
                 asio::any_io_executor executor);

    // A login of `name` from `group`: checked against `storedHash`, or, with no account of that
    // name, against a decoy of the same cost (so the answer and its time tell nothing).
    asio::awaitable<Outcome> checkLogin(const std::string& group, std::string_view name,
                                        const std::string* storedHash, std::string password,
                                        CancelFlag cancelled);
    // The current password of a logged-in member who wants to change it; failures count as
    // failed logins of that account.
    asio::awaitable<Outcome> checkCurrentPassword(const std::string& group, std::string_view name,
                                                  const std::string& storedHash,
                                                  std::string password, CancelFlag cancelled);
    // The hash of a new password (sign-up, password change), or nothing when too busy.
    asio::awaitable<std::optional<std::string>> hash(const std::string& group, std::string password,
                                                     CancelFlag cancelled);
    // Takes one sign-up of the group's ration; false when the ration is spent.
    bool takeSignUp(const std::string& group);

    // Work asked for from now on is skipped, and work waiting is let go to be skipped.
    void shutDown();

  private:
    asio::awaitable<Outcome> check(const std::string& group, std::string_view name,
                                   const std::string* storedHash, std::string password,
                                   CancelFlag cancelled);
    std::string accountKey(std::string_view name) const;
    std::string trustKey(std::string_view name, const std::string& group) const;
    Clock::duration waitBefore(const std::string& group, std::string_view name,
                               Clock::time_point now) const;

    PasswordWorker& worker_;
    FailureLedger addressFailures_;
    FailureLedger accountFailures_;
    PasswordQueue queue_;
    GroupRateLimiter signUps_;
    // "name@group" of every login that succeeded since the server started, bounded.
    std::unordered_set<std::string> trusted_;
};

}  // namespace tavren::server
