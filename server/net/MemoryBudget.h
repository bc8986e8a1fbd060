#pragma once

#include <cstddef>

namespace tavren::server {

// The bytes all connections together may hold for their clients: partial frames being read,
// requests waiting to be handled and frames waiting to be written. Each connection keeps its own
// share up to date; a connection whose share cannot grow is the one asking for more than the
// server has left and is dropped, so that a crowd of half-sent large frames runs into this bound
// instead of into the machine's memory. Only the network thread touches it.
class MemoryBudget {
  public:
    explicit MemoryBudget(std::size_t totalBytes) : total_(totalBytes) {}

    // Sets a holder's share from `held` to `wanted` bytes. Shrinking always succeeds; growing
    // fails, changing nothing, when the total would pass the budget.
    bool resize(std::size_t& held, std::size_t wanted);
    std::size_t used() const { return used_; }
    std::size_t total() const { return total_; }

  private:
    std::size_t total_;
    std::size_t used_ = 0;
};

}  // namespace tavren::server
