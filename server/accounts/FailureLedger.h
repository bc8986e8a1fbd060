#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <unordered_map>

namespace tavren::server {

// Failed password tries per source (an address group, an account name) and the back-off they
// earn: the first `freeFailures` cost nothing, then each further try must wait one second after
// the last failure, doubling with every failure up to `maxBackoff`. A source with no failure for
// `forgetAfter` starts afresh, and so does one that succeeds. Guessing at full speed therefore
// turns into a few guesses an hour, while a member who mistypes twice never notices.
class FailureLedger {
  public:
    using Clock = std::chrono::steady_clock;

    FailureLedger(int freeFailures, Clock::duration maxBackoff, Clock::duration forgetAfter)
        : freeFailures_(freeFailures), maxBackoff_(maxBackoff), forgetAfter_(forgetAfter) {}

    // How long `source` must still wait before its next try; zero when it may try now.
    Clock::duration waitFor(const std::string& source, Clock::time_point now) const;
    void recordFailure(const std::string& source, Clock::time_point now);
    void forget(const std::string& source) { entries_.erase(source); }
    std::size_t trackedSources() const { return entries_.size(); }

  private:
    struct Entry {
        int failures = 0;
        Clock::time_point last;
    };

    Clock::duration backoffAfter(int failures) const;

    int freeFailures_;
    Clock::duration maxBackoff_;
    Clock::duration forgetAfter_;
    std::unordered_map<std::string, Entry> entries_;
    std::size_t pruneAt_ = 1024;
};

}  // namespace tavren::server
