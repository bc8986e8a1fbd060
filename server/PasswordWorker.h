#pragma once

#include <asio/awaitable.hpp>
#include <asio/co_spawn.hpp>
#include <asio/thread_pool.hpp>
#include <asio/use_awaitable.hpp>
#include <atomic>
#include <cstddef>
#include <stdexcept>
#include <string>

namespace tavren::server {

// Hashes and checks passwords on a worker thread, so that the network thread never stalls for
// the tens of milliseconds each one takes. One thread by default: argon2id wants 64 MiB per hash,
// and queueing a burst of logins is better than running out of memory. The coroutine awaiting a
// result resumes on its own executor.
class PasswordWorker {
  public:
    explicit PasswordWorker(std::size_t threads = 1) : pool_(threads) {}
    ~PasswordWorker() { pool_.join(); }
    PasswordWorker(const PasswordWorker&) = delete;
    PasswordWorker& operator=(const PasswordWorker&) = delete;

    asio::awaitable<std::string> hash(std::string password);
    asio::awaitable<bool> verify(std::string storedHash, std::string password);
    asio::awaitable<void> verifyAgainstDecoy(std::string password);

    // Work queued after this throws instead of hashing, so a stopping server does not sit through
    // a backlog of logins nobody waits for.
    void shutDown() { shuttingDown_ = true; }

  private:
    // Deliberately not a coroutine itself: GCC 12 mishandles a lambda taken by value as a
    // coroutine parameter, so the lambda goes straight into co_spawn, which keeps it alive.
    template <typename Function>
    auto run(Function function) -> asio::awaitable<decltype(function())> {
        using Result = decltype(function());
        return asio::co_spawn(
            pool_,
            [this, function = std::move(function)]() -> asio::awaitable<Result> {
                if (shuttingDown_) {
                    throw std::runtime_error("the server is shutting down");
                }
                co_return function();
            },
            asio::use_awaitable);
    }

    asio::thread_pool pool_;
    std::atomic<bool> shuttingDown_{false};
};

}  // namespace tavren::server
