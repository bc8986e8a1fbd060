#include "server/net/GroupRateLimiter.h"

#include <algorithm>

namespace tavren::server {

double GroupRateLimiter::refilled(const Bucket& bucket, Clock::time_point now) const {
    const double elapsed = std::chrono::duration<double>(now - bucket.last).count();
    return std::min(burst_, bucket.tokens + std::max(0.0, elapsed) * perSecond_);
}

bool GroupRateLimiter::admit(const std::string& group, Clock::time_point now) {
    if (buckets_.size() >= pruneAt_) {
        forgetFullBuckets(now);
        // The table grows only with groups that connected within the refill time; the next prune
        // waits until it has doubled, so pruning costs O(1) per admission on average.
        pruneAt_ = std::max<std::size_t>(1024, buckets_.size() * 2);
    }
    auto [entry, added] = buckets_.try_emplace(group, Bucket{burst_, now});
    Bucket& bucket = entry->second;
    bucket.tokens = refilled(bucket, now);
    bucket.last = now;
    if (bucket.tokens < 1.0) {
        return false;
    }
    bucket.tokens -= 1.0;
    return true;
}

void GroupRateLimiter::forgetFullBuckets(Clock::time_point now) {
    std::erase_if(buckets_,
                  [&](const auto& entry) { return refilled(entry.second, now) >= burst_; });
}

}  // namespace tavren::server
