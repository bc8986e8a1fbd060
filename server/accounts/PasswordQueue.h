#pragma once

#include <asio/any_io_executor.hpp>
#include <asio/awaitable.hpp>
#include <asio/steady_timer.hpp>
#include <cstddef>
#include <deque>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

namespace tavren::server {

// Decides whose password check runs next. Checks wait per address group and take turns between
// the groups, so a real member waits behind at most one check of every other group, however many
// a crowd of hostile connections has asked for. A group may have `maxPerGroup` checks waiting or
// running, the server `maxInAll`; beyond that a check is refused at once ("busy, try again")
// instead of joining an endless queue. `running` checks go on at the same time (the password
// worker's threads). Used on the network thread only.
class PasswordQueue {
    struct Waiter;

  public:
    // A place in the queue; give it up by destroying it, whether the check ran or not.
    class Ticket {
      public:
        Ticket(Ticket&& other) noexcept;
        Ticket& operator=(Ticket&&) = delete;
        Ticket(const Ticket&) = delete;
        Ticket& operator=(const Ticket&) = delete;
        ~Ticket();

      private:
        friend class PasswordQueue;
        Ticket(PasswordQueue* queue, std::shared_ptr<Waiter> waiter)
            : queue_(queue), waiter_(std::move(waiter)) {}
        PasswordQueue* queue_;
        std::shared_ptr<Waiter> waiter_;
    };

    PasswordQueue(asio::any_io_executor executor, std::size_t maxPerGroup, std::size_t maxInAll,
                  std::size_t running = 1);

    // A place for a check of `group`, or nothing when the group or the server has the most
    // checks allowed waiting already.
    std::optional<Ticket> enter(const std::string& group);
    // Returns once it is this ticket's turn; the check runs while the ticket lives.
    asio::awaitable<void> waitTurn(Ticket& ticket);

    // Lets every waiting check go at once (for a stopping server, whose password worker then
    // skips them), so that no coroutine is left waiting for a turn that never comes.
    void releaseAll();

    std::size_t waiting() const { return inAll_ - running_; }
    std::size_t inAll() const { return inAll_; }

  private:
    struct Waiter {
        Waiter(asio::any_io_executor executor, std::string ofGroup)
            : turn(std::move(executor)), group(std::move(ofGroup)) {}
        asio::steady_timer turn;  // cancelled when the turn comes
        std::string group;
        bool queued = false;
        bool granted = false;
    };

    void leave(const std::shared_ptr<Waiter>& waiter);
    void grantNext();

    asio::any_io_executor executor_;
    std::size_t maxPerGroup_;
    std::size_t maxInAll_;
    std::size_t runningAtOnce_;
    std::size_t running_ = 0;
    std::size_t inAll_ = 0;
    bool released_ = false;
    std::unordered_map<std::string, std::size_t> perGroup_;  // waiting or running
    std::unordered_map<std::string, std::deque<std::shared_ptr<Waiter>>> queued_;
    std::list<std::string> turns_;  // groups with queued checks, next to be served first
};

}  // namespace tavren::server
