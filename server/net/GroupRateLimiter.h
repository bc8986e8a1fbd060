#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <unordered_map>

namespace tavren::server {

// Events per address group (new connections, sign-ups): a token bucket per group that holds
// `burst` events and earns `perMinute` back each minute. Accepting and refusing cost nothing to a
// client, so without this one host could keep the server busy opening and closing sockets, or
// try names at sign-up as fast as it likes. Groups whose bucket is full again are forgotten, so
// the table holds only the groups that were active lately.
class GroupRateLimiter {
  public:
    using Clock = std::chrono::steady_clock;

    GroupRateLimiter(double perMinute, double burst)
        : perSecond_(perMinute / 60.0), burst_(burst) {}

    // True, taking a token, when `group` may open another connection now.
    bool admit(const std::string& group, Clock::time_point now);
    std::size_t trackedGroups() const { return buckets_.size(); }

  private:
    struct Bucket {
        double tokens;
        Clock::time_point last;
    };

    double refilled(const Bucket& bucket, Clock::time_point now) const;
    void forgetFullBuckets(Clock::time_point now);

    double perSecond_;
    double burst_;
    std::unordered_map<std::string, Bucket> buckets_;
    std::size_t pruneAt_ = 1024;
};

}  // namespace tavren::server
