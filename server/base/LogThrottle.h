#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <unordered_map>

namespace tavren::server {

// Bounds the log lines one source (an address group) can cause: a burst of `burst` lines, then one
// per `interval`. Lines beyond that are counted, not written, and the next line that is written
// says how many were left out. A client that sends frames only to be refused therefore cannot
// fill the operator's disk, and the log still shows that it tried.
class LogThrottle {
  public:
    using Clock = std::chrono::steady_clock;

    LogThrottle(int burst, Clock::duration interval) : burst_(burst), interval_(interval) {}

    // Whether a line from `source` may be written now; when it may, `leftOut` is set to the lines
    // of that source skipped since its last written one.
    bool allow(const std::string& source, Clock::time_point now, std::size_t& leftOut);

  private:
    struct Budget {
        double lines;
        Clock::time_point last;
        std::size_t skipped = 0;
    };

    int burst_;
    Clock::duration interval_;
    std::unordered_map<std::string, Budget> budgets_;
    std::size_t pruneAt_ = 1024;
};

}  // namespace tavren::server
