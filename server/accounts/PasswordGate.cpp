#include "server/accounts/PasswordGate.h"

#include "server/base/AsciiText.h"

namespace tavren::server {

namespace {

// Known-good pairs kept at most; beyond it the set starts again (a member then waits out the
// account's back-off like a stranger would, nothing worse).
constexpr std::size_t kMaxTrustedPairs = 100000;

}  // namespace

PasswordGate::PasswordGate(PasswordWorker& worker, const PasswordLimits& limits,
                           asio::any_io_executor executor)
    : worker_(worker),
      addressFailures_(limits.failuresBeforeBackoff, limits.maxBackoff, limits.forgetFailuresAfter),
      // An account is tried from many places by its own member too (home, work, a phone), so it
      // has twice an address's free failures before it backs off.
      accountFailures_(2 * limits.failuresBeforeBackoff, limits.maxBackoff,
                       limits.forgetFailuresAfter),
      queue_(std::move(executor), limits.maxPendingPerAddress, limits.maxPending),
      signUps_(limits.signUpsPerHour / 60.0, limits.signUpsPerHour) {}

std::string PasswordGate::accountKey(std::string_view name) const {
    return AsciiText::lower(name);
}

std::string PasswordGate::trustKey(std::string_view name, const std::string& group) const {
    return AsciiText::lower(name) + "@" + group;
}

PasswordGate::Clock::duration PasswordGate::waitBefore(const std::string& group,
                                                       std::string_view name,
                                                       Clock::time_point now) const {
    Clock::duration wait = addressFailures_.waitFor(group, now);
    if (!trusted_.contains(trustKey(name, group))) {
        wait = std::max(wait, accountFailures_.waitFor(accountKey(name), now));
    }
    return wait;
}

asio::awaitable<PasswordGate::Outcome> PasswordGate::checkLogin(const std::string& group,
                                                                std::string_view name,
                                                                const std::string* storedHash,
                                                                std::string password,
                                                                CancelFlag cancelled) {
    return check(group, name, storedHash, std::move(password), std::move(cancelled));
}

asio::awaitable<PasswordGate::Outcome> PasswordGate::checkCurrentPassword(
    const std::string& group, std::string_view name, const std::string& storedHash,
    std::string password, CancelFlag cancelled) {
    return check(group, name, &storedHash, std::move(password), std::move(cancelled));
}

asio::awaitable<PasswordGate::Outcome> PasswordGate::check(const std::string& group,
                                                           std::string_view name,
                                                           const std::string* storedHash,
                                                           std::string password,
                                                           CancelFlag cancelled) {
    // Copied: the caller's strings may not outlive a suspension.
    const std::string account = accountKey(name);
    const std::string where = group;
    if (const auto wait = waitBefore(where, account, Clock::now());
        wait > Clock::duration::zero()) {
        co_return Outcome{Outcome::Kind::kWait, wait};
    }
    std::optional<PasswordQueue::Ticket> ticket = queue_.enter(where);
    if (!ticket) {
        co_return Outcome{Outcome::Kind::kBusy, {}};
    }
    co_await queue_.waitTurn(*ticket);
    bool right = false;
    if (storedHash) {
        right = co_await worker_.verify(*storedHash, std::move(password), cancelled);
    } else {
        co_await worker_.verifyAgainstDecoy(std::move(password), cancelled);
    }
    if (!right) {
        const auto now = Clock::now();
        addressFailures_.recordFailure(where, now);
        accountFailures_.recordFailure(account, now);
        co_return Outcome{Outcome::Kind::kRefused, {}};
    }
    if (trusted_.size() >= kMaxTrustedPairs) {
        trusted_.clear();
    }
    trusted_.insert(trustKey(account, where));
    // The address proved it knows a password; its earlier typos are forgiven. The account's
    // failures stay, since they may come from strangers elsewhere.
    addressFailures_.forget(where);
    co_return Outcome{Outcome::Kind::kAccepted, {}};
}

asio::awaitable<std::optional<std::string>> PasswordGate::hash(const std::string& group,
                                                               std::string password,
                                                               CancelFlag cancelled) {
    const std::string where = group;
    std::optional<PasswordQueue::Ticket> ticket = queue_.enter(where);
    if (!ticket) {
        co_return std::nullopt;
    }
    co_await queue_.waitTurn(*ticket);
    co_return co_await worker_.hash(std::move(password), std::move(cancelled));
}

bool PasswordGate::takeSignUp(const std::string& group) {
    return signUps_.admit(group, GroupRateLimiter::Clock::now());
}

void PasswordGate::shutDown() {
    worker_.shutDown();
    queue_.releaseAll();
}

}  // namespace tavren::server
