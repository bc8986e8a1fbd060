#pragma once

#include <asio/awaitable.hpp>
#include <asio/co_spawn.hpp>
#include <asio/thread_pool.hpp>
#include <asio/use_awaitable.hpp>
#include <atomic>
#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>

namespace tavren::server {

// Hashes and checks passwords on a worker thread, so that the network thread never stalls for
// the tens of milliseconds each one takes. One thread by default: argon2id wants 64 MiB per hash,
// and queueing a burst of logins is better than running out of memory. The coroutine awaiting a
// result resumes on its own executor.
//
// Each job carries its requester's cancel flag: a job whose requester has gone by the time its
// turn comes is skipped, so a crowd of clients that send a password and hang up cannot keep the
// worker busy for the ones still waiting.
class PasswordWorker {
  public:
    using CancelFlag = std::shared_ptr<const std::atomic<bool>>;

    // Thrown to the awaiting coroutine instead of a result when a job was skipped.
    class Skipped : public std::runtime_error {
      public:
        using std::runtime_error::runtime_error;
    };

    explicit PasswordWorker(std::size_t threads = 1) : pool_(threads) {}
    ~PasswordWorker() { pool_.join(); }
    PasswordWorker(const PasswordWorker&) = delete;
    PasswordWorker& operator=(const PasswordWorker&) = delete;

    asio::awaitable<std::string> hash(std::string password, CancelFlag cancelled);
    asio::awaitable<bool> verify(std::string storedHash, std::string password,
                                 CancelFlag cancelled);
    asio::awaitable<void> verifyAgainstDecoy(std::string password, CancelFlag cancelled);

    // Work queued after this throws instead of hashing, so a stopping server does not sit through
    // a backlog of logins nobody waits for.
    void shutDown() { shuttingDown_ = true; }

  private:
    // Deliberately not a coroutine itself: GCC 12 mishandles a lambda taken by value as a
    // coroutine parameter, so the lambda goes straight into co_spawn, which keeps it alive.
    template <typename Function>
    auto run(Function function, CancelFlag cancelled) -> asio::awaitable<decltype(function())> {
        using Result = decltype(function());
        return asio::co_spawn(
            pool_,
            [this, function = std::move(function),
             cancelled = std::move(cancelled)]() -> asio::awaitable<Result> {
                if (shuttingDown_) {
                    throw Skipped("the server is shutting down");
                }
                if (cancelled && *cancelled) {
                    throw Skipped("the client has gone");
                }
                co_return function();
            },
            asio::use_awaitable);
    }

    asio::thread_pool pool_;
    std::atomic<bool> shuttingDown_{false};
};

}  // namespace tavren::server
