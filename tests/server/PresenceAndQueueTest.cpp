#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "core/protocol/Catalogue.h"
#include "server/AddressLimiter.h"
#include "server/LocalPresenceHub.h"
#include "server/OutgoingQueue.h"

namespace tavren::server {
namespace {

// A link that records what it was sent; with `leaveOnSend` it drops itself out of the hub on the
// first frame, as a connection does when its queue overflows during a broadcast.
class RecordingLink : public ClientLink {
  public:
    void send(protocol::CodePair code, std::string_view payload) override {
        frames.emplace_back(code, std::string(payload));
        if (leaveOnSend) {
            leaveOnSend = false;
            hub->leave(name, this);
        }
    }
    void finish(std::string_view) override { finished = true; }
    const std::string& peerAddress() const override { return address; }

    std::vector<std::pair<protocol::CodePair, std::string>> frames;
    bool finished = false;
    bool leaveOnSend = false;
    PresenceHub* hub = nullptr;
    std::string name;
    std::string address = "test";
};

TEST(LocalPresenceHubTest, CountsMembersOnceAndOnlyTheCurrentLinkCanLeave) {
    LocalPresenceHub hub;
    auto first = std::make_shared<RecordingLink>();
    auto second = std::make_shared<RecordingLink>();
    auto other = std::make_shared<RecordingLink>();
    EXPECT_EQ(hub.join("Alice", first), nullptr);
    EXPECT_EQ(hub.join("bob", other), nullptr);
    EXPECT_EQ(hub.join("ALICE", second), first);  // same member, other spelling
    EXPECT_EQ(hub.onlineCount(), 2u);

    hub.leave("alice", first.get());  // the replaced session leaving late
    EXPECT_EQ(hub.onlineCount(), 2u);
    hub.leave("alice", second.get());
    EXPECT_EQ(hub.onlineCount(), 1u);
    ASSERT_FALSE(other->frames.empty());
    EXPECT_EQ(other->frames.back(),
              std::make_pair(protocol::server_to_client::kOnlineCount, std::string("1")));
}

TEST(LocalPresenceHubTest, AMemberDroppedDuringABroadcastDoesNotDisturbIt) {
    LocalPresenceHub hub;
    std::vector<std::shared_ptr<RecordingLink>> links;
    for (const char* name : {"a1", "a2", "a3"}) {
        auto link = std::make_shared<RecordingLink>();
        link->hub = &hub;
        link->name = name;
        hub.join(name, link);
        links.push_back(link);
    }
    links[0]->leaveOnSend = true;
    hub.broadcast(protocol::server_to_client::kPing, "x");
    EXPECT_EQ(hub.onlineCount(), 2u);
    // The others got the broadcast and, from the leave, the new count.
    for (const auto& link : {links[1], links[2]}) {
        const auto& frames = link->frames;
        EXPECT_NE(std::find(frames.begin(), frames.end(),
                            std::make_pair(protocol::server_to_client::kPing, std::string("x"))),
                  frames.end());
        EXPECT_EQ(frames.back().second == "2" || frames[frames.size() - 2].second == "2", true);
    }
}

TEST(OutgoingQueueTest, RefusesFramesBeyondEitherLimit) {
    OutgoingQueue byCount(2, 100);
    EXPECT_TRUE(byCount.push("a"));
    EXPECT_TRUE(byCount.push("b"));
    EXPECT_FALSE(byCount.push("c"));
    byCount.pop();
    EXPECT_TRUE(byCount.push("c"));
    EXPECT_EQ(byCount.front(), "b");

    OutgoingQueue byBytes(100, 10);
    EXPECT_TRUE(byBytes.push(std::string(6, 'x')));
    EXPECT_FALSE(byBytes.push(std::string(5, 'y')));
    EXPECT_TRUE(byBytes.push(std::string(4, 'y')));
    EXPECT_EQ(byBytes.bytes(), 10u);
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
