#include "server/FrameRateLimiter.h"

#include <gtest/gtest.h>

namespace tavren::server {
namespace {

using namespace std::chrono_literals;
using Kind = FrameRateLimiter::Verdict::Kind;

TEST(FrameRateLimiterTest, BurstPassesThenFramesArePacedThenAFloodIsDropped) {
    const auto start = FrameRateLimiter::Clock::now();
    FrameRateLimiter limiter(10.0, 3, start);
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(limiter.admit(start).kind, Kind::kPass) << i;
    }
    // Each further frame waits one more tenth of a second, as long as they keep coming at once.
    for (int i = 1; i <= 3; ++i) {
        const auto verdict = limiter.admit(start);
        ASSERT_EQ(verdict.kind, Kind::kDelay);
        EXPECT_NEAR(std::chrono::duration<double>(verdict.delay).count(), 0.1 * i, 1e-6);
    }
    EXPECT_EQ(limiter.admit(start).kind, Kind::kDrop);
}

TEST(FrameRateLimiterTest, WaitingOutTheDelayKeepsAFastClientBelowTheFloodLimit) {
    auto now = FrameRateLimiter::Clock::now();
    FrameRateLimiter limiter(10.0, 3, now);
    for (int i = 0; i < 10; ++i) {
        limiter.admit(now);
    }
    // A client sending at exactly the rate after its burst: every frame waits a little, but the
    // streak ends whenever it pauses long enough to earn a whole token.
    for (int round = 0; round < 5; ++round) {
        for (int i = 0; i < 3; ++i) {
            const auto verdict = limiter.admit(now);
            ASSERT_NE(verdict.kind, Kind::kDrop) << round;
            now += verdict.delay;
        }
        now += 200ms;
        EXPECT_EQ(limiter.admit(now).kind, Kind::kPass);
    }
    // A long pause refills the bucket to one second's worth, and no more.
    now += 1h;
    int passed = 0;
    while (limiter.admit(now).kind == Kind::kPass) {
        ++passed;
    }
    EXPECT_EQ(passed, 10);
}

}  // namespace
}  // namespace tavren::server
