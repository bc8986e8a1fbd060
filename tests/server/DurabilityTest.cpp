// A server killed with SIGKILL in the middle of work keeps every change it acknowledged: buddies
// added, mail sent and channels created are all there after a restart.
#include <set>
#include <string>
#include <vector>

#include "core/protocol/Fields.h"
#include "server/support/ServerFixture.h"

namespace tavren::test {
namespace {

using namespace std::chrono_literals;

class DurabilityTest : public ServerFixture {};

std::string mailRecord(const std::string& to, const std::string& body) {
    return protocol::JoinFields({to, body, "durable"}, "\x01") + "\x02";
}

TEST_F(DurabilityTest, EveryAcknowledgedChangeSurvivesAKill) {
    std::vector<std::string> buddies;
    for (int i = 0; i < 40; ++i) {
        buddies.push_back("b" + std::to_string(100 + i));
    }
    addMembers({"alice", "bob", "carol"});
    for (const auto& name : buddies) {
        addAccount(name, "secret1");
    }
    for (int round = 0; round < 3; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        startServer();
        auto alice = member("alice");
        auto bob = member("bob");
        std::set<std::string> ackedBuddies;
        std::set<std::string> ackedChannels;
        std::set<std::string> ackedMail;
        // Three kinds of change in flight at once; each one counts once its answer is read, and
        // the server is killed while later ones are still on their way.
        const int total = 12;
        for (int i = 0; i < total; ++i) {
            const std::string tag = std::to_string(round) + "-" + std::to_string(i);
            alice->send(in::kAddBuddy, buddies[static_cast<std::size_t>(round * total + i)]);
            bob->send(in::kJoinRoom, "Durable" + tag);
            bob->send(in::kSendMail, mailRecord("carol", "mail " + tag));
        }
        const int readBeforeKill = 4 + round * 4;
        for (int i = 0; i < readBeforeKill; ++i) {
            // (2, 14) is answered with the list and one record per buddy: the list is the answer.
            for (auto frame = alice->next(5s); frame; frame = alice->next(5s)) {
                if (frame->code == out::kBuddyPresence &&
                    frame->payload.find(':') != std::string::npos) {
                    for (const auto& entry : protocol::SplitFields(frame->payload, ":")) {
                        if (const auto dot = entry.find('.'); dot != std::string_view::npos) {
                            ackedBuddies.insert(std::string(entry.substr(dot + 1)));
                        }
                    }
                    break;
                }
            }
            for (auto frame = bob->next(5s); frame; frame = bob->next(5s)) {
                if (frame->code == out::kJoinedRoom) {
                    ackedChannels.insert(frame->payload);
                } else if (frame->code == out::kMailSent) {
                    ackedMail.insert("mail " + std::to_string(round) + "-" +
                                     std::to_string(ackedMail.size()));
                    break;
                }
            }
        }
        server_->killAtOnce();
        server_.reset();
        ASSERT_GE(ackedBuddies.size(), static_cast<std::size_t>(readBeforeKill));

        startServer();
        member("alice");
        for (const auto& name : ackedBuddies) {
            EXPECT_NE(lastBuddyList_.find("." + name + ":"), std::string::npos)
                << name << " was acknowledged but is gone: " << lastBuddyList_;
        }
        // A channel that survived keeps its host, so a newcomer is not made its host.
        auto carol = member("carol");
        for (const auto& channel : ackedChannels) {
            carol->send(in::kJoinRoom, channel);
            carol->expect(out::kJoinedRoom);
            EXPECT_EQ(carol->expect(out::kMemberList).payload, channel + ":carol;")
                << channel << " was acknowledged but is gone";
        }
        carol->send(in::kMailReceive, "Mail-Recv");
        const std::string inbox = carol->expect(out::kMailList).payload;
        for (const auto& body : ackedMail) {
            EXPECT_NE(inbox.find(body), std::string::npos)
                << body << " was acknowledged but is gone";
        }
        server_->stop();
        server_.reset();
    }
}

}  // namespace
}  // namespace tavren::test
