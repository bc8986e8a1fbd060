// The parts that keep tavrend bounded under attack, each with a clock or an executor of the
// test's own: address groups, rations per group, back-off after failures, the fair password
// queue, the memory budget and the log's ration.
#include <gtest/gtest.h>

#include <asio/co_spawn.hpp>
#include <asio/detached.hpp>
#include <asio/io_context.hpp>
#include <deque>
#include <string>
#include <vector>

#include "server/accounts/FailureLedger.h"
#include "server/accounts/PasswordQueue.h"
#include "server/base/LogThrottle.h"
#include "server/net/AddressGroup.h"
#include "server/net/GroupRateLimiter.h"
#include "server/net/MemoryBudget.h"

namespace tavren::server {
namespace {

using namespace std::chrono_literals;

TEST(AddressGroupTest, IPv4StandsAloneIPv6CountsByItsSlash64) {
    EXPECT_EQ(AddressGroup::ofText("192.0.2.7"), "192.0.2.7");
    EXPECT_NE(AddressGroup::ofText("192.0.2.7"), AddressGroup::ofText("192.0.2.8"));
    // The same host reached over IPv6 as a mapped address counts as its IPv4 address.
    EXPECT_EQ(AddressGroup::ofText("::ffff:192.0.2.7"), "192.0.2.7");
    // Any two addresses of one /64 are one group; the next /64 is another.
    EXPECT_EQ(AddressGroup::ofText("2001:db8:1:2::1"), "2001:db8:1:2::/64");
    EXPECT_EQ(AddressGroup::ofText("2001:db8:1:2:ffff:ffff:ffff:ffff"), "2001:db8:1:2::/64");
    EXPECT_NE(AddressGroup::ofText("2001:db8:1:3::1"), AddressGroup::ofText("2001:db8:1:2::1"));
    EXPECT_EQ(AddressGroup::ofText("not an address"), "not an address");
}

TEST(GroupRateLimiterTest, ABurstThenTheRateEachGroupOnItsOwn) {
    auto now = GroupRateLimiter::Clock::now();
    GroupRateLimiter limiter(60.0, 3.0);  // one a second after a burst of three
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(limiter.admit("a", now)) << i;
    }
    EXPECT_FALSE(limiter.admit("a", now));
    EXPECT_TRUE(limiter.admit("b", now));
    now += 999ms;
    EXPECT_FALSE(limiter.admit("a", now));
    now += 2ms;
    EXPECT_TRUE(limiter.admit("a", now));
    EXPECT_FALSE(limiter.admit("a", now));
    // A refused try earns nothing: asking again at once stays refused.
    EXPECT_FALSE(limiter.admit("a", now));
}

TEST(GroupRateLimiterTest, GroupsWhoseBucketIsFullAgainAreForgotten) {
    auto now = GroupRateLimiter::Clock::now();
    GroupRateLimiter limiter(60.0, 2.0);
    for (int i = 0; i < 1024; ++i) {
        limiter.admit("host" + std::to_string(i), now);
    }
    EXPECT_EQ(limiter.trackedGroups(), 1024u);
    now += 10s;  // every bucket full again
    limiter.admit("newcomer", now);
    EXPECT_EQ(limiter.trackedGroups(), 1u);
}

TEST(FailureLedgerTest, FreeFailuresThenAWaitThatDoublesUpToTheCapAndIsForgotten) {
    auto now = FailureLedger::Clock::now();
    FailureLedger ledger(3, 10s, 60s);
    for (int i = 0; i < 2; ++i) {
        ledger.recordFailure("x", now);
        EXPECT_EQ(ledger.waitFor("x", now), 0s) << i;
    }
    ledger.recordFailure("x", now);  // the third: from now on each try waits
    EXPECT_EQ(ledger.waitFor("x", now), 1s);
    EXPECT_EQ(ledger.waitFor("x", now + 400ms), 600ms);
    EXPECT_EQ(ledger.waitFor("y", now), 0s);
    const std::vector<std::chrono::seconds> waits{2s, 4s, 8s, 10s, 10s};
    for (const auto wait : waits) {
        ledger.recordFailure("x", now);
        EXPECT_EQ(ledger.waitFor("x", now), wait);
    }
    // Quiet for the forgetting time, or forgiven, and the source starts afresh.
    EXPECT_EQ(ledger.waitFor("x", now + 60s), 0s);
    ledger.recordFailure("x", now + 60s);
    EXPECT_EQ(ledger.waitFor("x", now + 60s), 0s);
    ledger.forget("x");
    EXPECT_EQ(ledger.trackedSources(), 0u);
}

// Runs what is ready; the context may have run out of work before, which stops it.
void pollAll(asio::io_context& io) {
    io.restart();
    io.poll();
}

// Takes a ticket for `group` and waits for its turn, noting the order of turns.
struct QueueUser {
    PasswordQueue& queue;
    std::vector<std::string>& turns;

    bool start(asio::io_context& io, const std::string& group,
               std::deque<PasswordQueue::Ticket>& running) {
        auto ticket = queue.enter(group);
        if (!ticket) {
            return false;
        }
        asio::co_spawn(
            io,
            [this, group, &running,
             ticket = std::move(*ticket)]() mutable -> asio::awaitable<void> {
                co_await queue.waitTurn(ticket);
                turns.push_back(group);
                running.push_back(std::move(ticket));
            },
            asio::detached);
        return true;
    }
};

TEST(PasswordQueueTest, GroupsTakeTurnsAndBothCapsRefuseAtOnce) {
    asio::io_context io;
    PasswordQueue queue(io.get_executor(), 3, 6);
    std::vector<std::string> turns;
    std::deque<PasswordQueue::Ticket> running;
    QueueUser user{queue, turns};
    // The crowd comes first and asks for all it may; the member comes last.
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(user.start(io, "crowd", running));
    }
    EXPECT_FALSE(user.start(io, "crowd", running)) << "a fourth check of one group";
    EXPECT_TRUE(user.start(io, "other", running));
    EXPECT_TRUE(user.start(io, "other", running));
    EXPECT_TRUE(user.start(io, "member", running));
    EXPECT_FALSE(user.start(io, "latecomer", running)) << "a seventh check in all";
    pollAll(io);
    ASSERT_EQ(turns, (std::vector<std::string>{"crowd"}));  // one runs at a time
    // Each finished check lets the next group in line go.
    // Round by round, one check of each group that has one waiting: the member waits behind one
    // check per group, not behind the whole crowd.
    const std::vector<std::string> expected{"crowd", "crowd", "other", "member", "crowd", "other"};
    while (!running.empty()) {
        running.pop_front();
        pollAll(io);
    }
    EXPECT_EQ(turns, expected);
    EXPECT_EQ(queue.inAll(), 0u);
    EXPECT_TRUE(user.start(io, "latecomer", running));
}

TEST(PasswordQueueTest, ATicketGivenUpBeforeItsTurnLeavesTheLineAndReleaseLetsAllGo) {
    asio::io_context io;
    PasswordQueue queue(io.get_executor(), 2, 10);
    std::vector<std::string> turns;
    std::deque<PasswordQueue::Ticket> running;
    QueueUser user{queue, turns};
    ASSERT_TRUE(user.start(io, "a", running));
    pollAll(io);
    {
        auto gone = queue.enter("b");  // a client that hangs up before its turn
        ASSERT_TRUE(gone);
        EXPECT_EQ(queue.inAll(), 2u);
    }
    EXPECT_EQ(queue.inAll(), 1u);
    ASSERT_TRUE(user.start(io, "c", running));
    ASSERT_TRUE(user.start(io, "d", running));
    pollAll(io);
    EXPECT_EQ(turns.size(), 1u);
    queue.releaseAll();  // a stopping server: nobody is left waiting
    pollAll(io);
    EXPECT_EQ(turns, (std::vector<std::string>{"a", "c", "d"}));
    running.clear();
    EXPECT_EQ(queue.inAll(), 0u);
}

TEST(MemoryBudgetTest, SharesGrowWithinTheTotalAndAlwaysShrink) {
    MemoryBudget budget(1000);
    std::size_t a = 0;
    std::size_t b = 0;
    EXPECT_TRUE(budget.resize(a, 600));
    EXPECT_FALSE(budget.resize(b, 401));
    EXPECT_EQ(b, 0u);
    EXPECT_TRUE(budget.resize(b, 400));
    EXPECT_EQ(budget.used(), 1000u);
    EXPECT_FALSE(budget.resize(a, 601));
    EXPECT_TRUE(budget.resize(a, 100));
    EXPECT_TRUE(budget.resize(b, 900));
    EXPECT_TRUE(budget.resize(a, 0));
    EXPECT_TRUE(budget.resize(b, 0));
    EXPECT_EQ(budget.used(), 0u);
}

TEST(LogThrottleTest, ABurstThenOneLinePerIntervalAndTheLeftOutAreCounted) {
    auto now = LogThrottle::Clock::now();
    LogThrottle throttle(3, 1s);
    std::size_t leftOut = 99;
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(throttle.allow("a", now, leftOut));
        EXPECT_EQ(leftOut, 0u);
    }
    for (int i = 0; i < 500; ++i) {
        EXPECT_FALSE(throttle.allow("a", now, leftOut));
    }
    EXPECT_TRUE(throttle.allow("b", now, leftOut));
    now += 1s;
    EXPECT_TRUE(throttle.allow("a", now, leftOut));
    EXPECT_EQ(leftOut, 500u);
    EXPECT_FALSE(throttle.allow("a", now, leftOut));
}

}  // namespace
}  // namespace tavren::server
