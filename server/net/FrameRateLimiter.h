#pragma once

#include <chrono>

namespace tavren::server {

// Paces the frames one client sends: a token bucket that holds one second's worth of frames.
// A frame that finds no token waits until one has been earned, which slows a chatty client
// without losing anything; a client whose frames keep waiting, `floodLimit` of them in a row, is
// not chatting but flooding and is to be dropped.
class FrameRateLimiter {
  public:
    using Clock = std::chrono::steady_clock;

    struct Verdict {
        enum class Kind { kPass, kDelay, kDrop };
        Kind kind = Kind::kPass;
        Clock::duration delay{};  // how long to hold the frame back (kDelay only)
    };

    FrameRateLimiter(double framesPerSecond, int floodLimit, Clock::time_point now);

    // Called once per received frame, before it is handled.
    Verdict admit(Clock::time_point now);

  private:
    double rate_;
    double capacity_;
    double tokens_;
    int floodLimit_;
    int delayedInARow_ = 0;
    Clock::time_point last_;
};

}  // namespace tavren::server
