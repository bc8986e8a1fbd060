#pragma once

#include <chrono>
#include <cstdint>

namespace tavren::server {

// The lines a member may send in a burst: `capacity` in hand, one more earned back per
// `interval`, never more than `capacity`. The client runs the same meter (sent to it as (2, 16)),
// so a well-behaved client never hits this one; a line that finds the hand empty is refused, not
// delayed, since the member can simply send it again.
class LineBucket {
  public:
    using Clock = std::chrono::steady_clock;

    LineBucket(int capacity, Clock::duration interval, Clock::time_point now);

    // Takes one line from the hand; false when none is left.
    bool take(Clock::time_point now);
    int capacity() const { return capacity_; }
    Clock::duration interval() const { return interval_; }

  private:
    void refill(Clock::time_point now);

    int capacity_;
    Clock::duration interval_;
    std::int64_t inHand_;
    Clock::time_point earnedUntil_;  // time already turned into lines
};

}  // namespace tavren::server
