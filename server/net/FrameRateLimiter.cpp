#include "server/net/FrameRateLimiter.h"

#include <algorithm>

namespace tavren::server {

FrameRateLimiter::FrameRateLimiter(double framesPerSecond, int floodLimit, Clock::time_point now)
    : rate_(framesPerSecond),
      capacity_(std::max(1.0, framesPerSecond)),
      tokens_(capacity_),
      floodLimit_(floodLimit),
      last_(now) {}

FrameRateLimiter::Verdict FrameRateLimiter::admit(Clock::time_point now) {
    const double elapsed = std::chrono::duration<double>(now - last_).count();
    if (elapsed > 0) {
        tokens_ = std::min(capacity_, tokens_ + elapsed * rate_);
        last_ = now;
    }
    if (tokens_ >= 1.0) {
        tokens_ -= 1.0;
        delayedInARow_ = 0;
        return {};
    }
    if (++delayedInARow_ > floodLimit_) {
        return {Verdict::Kind::kDrop, {}};
    }
    // The frame takes the token it will have earned by the end of the delay; the next frame then
    // finds the bucket empty again unless the client paused in between.
    tokens_ -= 1.0;
    const std::chrono::duration<double> wait(-tokens_ / rate_);
    return {Verdict::Kind::kDelay, std::chrono::duration_cast<Clock::duration>(wait)};
}

}  // namespace tavren::server
