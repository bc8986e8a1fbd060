#include "server/session/LineBucket.h"

#include <algorithm>

namespace tavren::server {

LineBucket::LineBucket(int capacity, Clock::duration interval, Clock::time_point now)
    : capacity_(std::max(1, capacity)),
      interval_(std::max(interval, Clock::duration(1))),
      inHand_(capacity_),
      earnedUntil_(now) {}

void LineBucket::refill(Clock::time_point now) {
    if (inHand_ >= capacity_) {
        earnedUntil_ = now;  // a full hand earns nothing: the time spent full is not saved up
        return;
    }
    if (now <= earnedUntil_) {
        return;
    }
    const std::int64_t earned = (now - earnedUntil_) / interval_;
    if (earned <= 0) {
        return;
    }
    if (earned >= capacity_ - inHand_) {
        inHand_ = capacity_;
        earnedUntil_ = now;
    } else {
        inHand_ += earned;
        earnedUntil_ += earned * interval_;  // the part of an interval already waited still counts
    }
}

bool LineBucket::take(Clock::time_point now) {
    refill(now);
    if (inHand_ == 0) {
        return false;
    }
    --inHand_;
    return true;
}

}  // namespace tavren::server
