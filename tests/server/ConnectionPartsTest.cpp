// The parts every connection leans on: pacing, presence, the outgoing queue, per-address slots.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "core/protocol/Catalogue.h"
#include "core/protocol/Frame.h"
#include "server/net/AddressLimiter.h"
#include "server/net/FrameRateLimiter.h"
#include "server/net/LocalPresenceHub.h"
#include "server/net/OutgoingQueue.h"

namespace tavren::server {
namespace {

using namespace std::chrono_literals;
namespace out = protocol::server_to_client;

TEST(FrameRateLimiterTest, BurstPassesFramesArePacedAFloodIsDroppedAndAPauseRefills) {
    auto now = FrameRateLimiter::Clock::now();
    using Kind = FrameRateLimiter::Verdict::Kind;
    FrameRateLimiter limiter(10.0, 3, now);
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(limiter.admit(now).kind, Kind::kPass) << i;
    }
    // Each further frame waits one more tenth of a second, as long as they keep coming at once.
    for (int i = 1; i <= 3; ++i) {
        const auto verdict = limiter.admit(now);
        ASSERT_EQ(verdict.kind, Kind::kDelay);
        EXPECT_NEAR(std::chrono::duration<double>(verdict.delay).count(), 0.1 * i, 1e-6);
    }
    EXPECT_EQ(limiter.admit(now).kind, Kind::kDrop);

    // A client that waits out every delay keeps to the rate and is never dropped; the streak
    // ends whenever it pauses long enough to earn a whole token.
    now += 400ms;
    EXPECT_EQ(limiter.admit(now).kind, Kind::kPass);
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

// A link that records what it was sent; with `leaveOnSend` it drops itself out of the hub on the
// first frame, as a connection does when its queue overflows during a broadcast.
class RecordingLink : public ClientLink {
  public:
    RecordingLink(PresenceHub& hub, std::string name) : hub_(hub), name_(std::move(name)) {}
    void send(protocol::CodePair code, std::string_view payload) override {
        frames.emplace_back(code, std::string(payload));
        if (std::exchange(leaveOnSend, false)) {
            hub_.leave(name_, this);
        }
    }
    void sendFrame(SharedFrame frame) override {
        const auto parsed = protocol::ParseFrame(*frame);
        ASSERT_TRUE(parsed);
        send(parsed->code, parsed->payload);
    }
    void finish(std::string_view) override {}
    const std::string& peerAddress() const override { return name_; }
    bool got(protocol::CodePair code, const std::string& payload) const {
        return std::find(frames.begin(), frames.end(), std::make_pair(code, payload)) !=
               frames.end();
    }

    std::vector<std::pair<protocol::CodePair, std::string>> frames;
    bool leaveOnSend = false;

  private:
    PresenceHub& hub_;
    std::string name_;
};

TEST(LocalPresenceHubTest, CountsMembersOnceOnlyTheCurrentLinkLeavesAndBroadcastsSurviveLeaves) {
    LocalPresenceHub hub;
    auto first = std::make_shared<RecordingLink>(hub, "Alice");
    auto second = std::make_shared<RecordingLink>(hub, "ALICE");
    auto bob = std::make_shared<RecordingLink>(hub, "bob");
    auto aaron = std::make_shared<RecordingLink>(hub, "aaron");  // first in the walk
    EXPECT_EQ(hub.join("Alice", first), nullptr);
    EXPECT_EQ(hub.join("bob", bob), nullptr);
    EXPECT_EQ(hub.join("aaron", aaron), nullptr);
    EXPECT_EQ(hub.join("ALICE", second), first);  // same member, other spelling
    EXPECT_EQ(hub.onlineCount(), 3u);
    hub.leave("alice", first.get());  // the replaced session leaving late
    EXPECT_EQ(hub.onlineCount(), 3u);

    // Aaron is dropped by the broadcast itself; the others still get it, and the new count.
    aaron->leaveOnSend = true;
    hub.broadcast(out::kPing, "x");
    EXPECT_EQ(hub.onlineCount(), 2u);
    for (const auto& link : {second, bob}) {
        EXPECT_TRUE(link->got(out::kPing, "x"));
        EXPECT_TRUE(link->got(out::kOnlineCount, "2"));
    }
    hub.leave("alice", second.get());
    EXPECT_EQ(hub.onlineCount(), 1u);
    EXPECT_EQ(bob->frames.back(), std::make_pair(out::kOnlineCount, std::string("1")));
}

SharedFrame shared(std::string bytes) {
    return std::make_shared<const std::string>(std::move(bytes));
}

TEST(LocalPresenceHubTest, SendToReachesTheNamedMembersWhoAreOnlineWhateverTheCase) {
    LocalPresenceHub hub;
    auto alice = std::make_shared<RecordingLink>(hub, "Alice");
    auto bob = std::make_shared<RecordingLink>(hub, "bob");
    hub.join("Alice", alice);
    hub.join("bob", bob);
    EXPECT_TRUE(hub.isOnline("ALICE"));
    EXPECT_FALSE(hub.isOnline("carol"));
    const std::vector<std::string> names{"alice", "carol", "BOB"};
    hub.sendTo(names, out::kMemberList, "General:Alice;bob;");
    for (const auto& link : {alice, bob}) {
        EXPECT_EQ(link->frames.back(),
                  std::make_pair(out::kMemberList, std::string("General:Alice;bob;")));
    }
}

TEST(OutgoingQueueTest, RefusesFramesBeyondEitherLimitAndKeepsTheirOrder) {
    OutgoingQueue queue(3, 10);
    EXPECT_TRUE(queue.push(shared(std::string(6, 'a'))));
    EXPECT_FALSE(queue.push(shared(std::string(5, 'b')))) << "eleven bytes";
    EXPECT_TRUE(queue.push(shared(std::string(3, 'c'))));
    EXPECT_TRUE(queue.push(shared("d")));
    EXPECT_FALSE(queue.push(shared("e"))) << "four frames";
    EXPECT_EQ(queue.at(1), "ccc");
    queue.pop(2);
    EXPECT_EQ(queue.front(), "d");
    EXPECT_EQ(queue.bytes(), 1u);
    queue.pop(5);  // more than there are
    EXPECT_TRUE(queue.empty());
    EXPECT_EQ(queue.bytes(), 0u);
}

TEST(AddressLimiterTest, SlotsAreGivenBackHoweverTheyEnd) {
    AddressLimiter limiter(2);
    {
        auto a = limiter.tryAcquire("10.0.0.1");
        auto b = limiter.tryAcquire("10.0.0.1");
        ASSERT_TRUE(a && b);
        EXPECT_FALSE(limiter.tryAcquire("10.0.0.1"));
        EXPECT_TRUE(limiter.tryAcquire("10.0.0.2"));  // another address is not affected
        std::optional<AddressLimiter::Slot> moved(std::move(*a));
        a.reset();  // the moved-from slot gives nothing back
        EXPECT_EQ(limiter.openFrom("10.0.0.1"), 2);
    }
    EXPECT_EQ(limiter.openFrom("10.0.0.1"), 0);
}

}  // namespace
}  // namespace tavren::server
