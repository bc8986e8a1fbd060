// The server as an attacker sees it: hosts that hammer logins, hold sockets, send large frames,
// probe names and fill the log. Each case starts the real tavrend with its limits narrowed and
// checks that the attacker is stopped while a real member is still served. Other loopback
// addresses (127.0.0.2 and up) stand for other hosts.
#include <sys/resource.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>
#include <vector>

#include "core/protocol/Codecs.h"
#include "server/support/ServerFixture.h"

namespace tavren::test {
namespace {

using namespace std::chrono_literals;

class AttackTest : public ServerFixture {
  protected:
    std::unique_ptr<RawClient> connectFrom(const std::string& source) {
        return std::make_unique<RawClient>(server_->port(), 0, source.c_str());
    }

    std::size_t openDescriptors() const {
        const std::filesystem::path fds = "/proc/" + std::to_string(server_->pid()) + "/fd";
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(fds),
                                                      std::filesystem::directory_iterator()));
    }

    std::size_t logLinesWith(const std::string& text) const {
        std::istringstream log(server_->log());
        std::size_t count = 0;
        for (std::string line; std::getline(log, line);) {
            count += line.find(text) != std::string::npos ? 1 : 0;
        }
        return count;
    }
};

void expectStillServed(RawClient& client) {
    client.send(in::kAskEmail, "");
    client.expect(out::kAccountInfo);
}

std::string headerAnnouncing(std::uint32_t length, protocol::CodePair code) {
    return std::string("*\x14") + protocol::EncodeLength32(length) +
           protocol::EncodeWord16(code.cmd1) + protocol::EncodeWord16(code.cmd2);
}

// A hostile host's connection: the version, then three guesses at once, again and again as the
// server closes it. Every guess would cost a password check if the server let it.
void hammerLogins(std::uint16_t port, std::string source, const std::atomic<bool>& stop,
                  std::atomic<int>& refusedForLoad) {
    for (int round = 0; !stop; ++round) {
        try {
            RawClient client(port, 0, source.c_str());
            client.send(in::kVersionBeforeLogin, "1.0.0");
            std::string guesses;
            for (int i = 0; i < 3; ++i) {
                guesses +=
                    protocol::EncodeFrame(in::kCredentials, "bob:guess" + std::to_string(round) +
                                                                "x" + std::to_string(i));
            }
            client.sendRaw(guesses);
            while (!stop) {
                const auto frame = client.next(200ms);
                if (frame && frame->code == kNotice &&
                    (frame->payload.find("busy") != std::string::npos ||
                     frame->payload.find("wait") != std::string::npos)) {
                    ++refusedForLoad;
                }
                if (client.closed()) {
                    break;
                }
            }
        } catch (const std::exception&) {
            std::this_thread::sleep_for(20ms);  // refused a socket for a moment; try again
        }
    }
}

TEST_F(AttackTest, FiftyConnectionsHammeringLoginsLeaveARealMemberLoggingInWithinSeconds) {
    addAccount("alice", "secret1");
    addAccount("bob", "secret2");
    startServer({"--login-failures", "5", "--max-password-jobs-per-address", "2"});
    std::atomic<bool> stop{false};
    std::atomic<int> refusedForLoad{0};
    std::vector<std::thread> hostiles;
    // Ten hosts with five connections each.
    for (int i = 0; i < 50; ++i) {
        hostiles.emplace_back(hammerLogins, server_->port(),
                              "127.0.0." + std::to_string(2 + i % 10), std::cref(stop),
                              std::ref(refusedForLoad));
    }
    std::this_thread::sleep_for(1500ms);  // the queue is as full as they can make it

    // In a queue served in arrival order alice would wait behind about 150 checks; taking turns
    // between hosts she waits behind one per host at most.
    auto alice = greet();
    alice->send(in::kCredentials, "alice:secret1");
    const auto answer = alice->next(5s);
    stop = true;
    for (auto& thread : hostiles) {
        thread.join();
    }
    ASSERT_TRUE(answer) << "no answer to a real login within 5 s";
    EXPECT_EQ(answer->code, out::kAccountRefresh);
    EXPECT_GT(refusedForLoad.load(), 0) << "the hostile hosts were never told to back off";
    EXPECT_GT(logLinesWith("backing off after failed logins"), 0u);
}

TEST_F(AttackTest, WrongCurrentPasswordsBackOffLikeFailedLogins) {
    addAccount("alice", "secret1");
    startServer({"--login-failures", "2"});
    auto alice = logIn("alice", "secret1");
    for (int i = 0; i < 2; ++i) {
        alice->send(in::kChangePassword, "wrong" + std::to_string(i) + ":newsecret");
        EXPECT_EQ(alice->expect(kNotice).payload,
                  "Your password was not changed: the current password is wrong.");
    }
    // Not even checked now, the right password neither.
    alice->send(in::kChangePassword, "secret1:newsecret");
    const std::string refusal = alice->expect(kNotice).payload;
    EXPECT_EQ(
        refusal.rfind("Your password was not changed: too many wrong passwords. Please wait ", 0),
        0u)
        << refusal;
}

TEST_F(AttackTest, ConnectionsAreCappedInAllAndPerHostAndRefusalsHoldNoSockets) {
    addAccount("alice", "secret1");
    startServer({"--max-per-address", "2", "--max-connections", "3"});
    auto alice = logIn("alice", "secret1");
    auto second = greet();
    auto third = connect();
    EXPECT_EQ(third->expect(kNotice).payload,
              "Too many connections from your address. Please close one and try again.");
    EXPECT_TRUE(third->waitClosed());
    auto elsewhere = connectFrom("127.0.0.2");
    elsewhere->send(in::kVersionBeforeLogin, "1.0.0");
    elsewhere->expect(out::kHello);
    auto oneTooMany = connectFrom("127.0.0.3");
    EXPECT_EQ(oneTooMany->expect(kNotice).payload, "The server is full. Please try again later.");
    EXPECT_TRUE(oneTooMany->waitClosed());

    // Refused clients that keep their sockets open cost the server a few descriptors at most:
    // it closes them at once beyond a small number it lets read their notice.
    const std::size_t before = openDescriptors();
    std::vector<std::unique_ptr<RawClient>> refused;
    for (int i = 0; i < 150; ++i) {
        refused.push_back(connectFrom("127.0.0.4"));
    }
    std::this_thread::sleep_for(300ms);
    EXPECT_LE(openDescriptors(), before + 64 + 8);
    expectStillServed(*alice);
}

TEST_F(AttackTest, OneHostConnectingTooOftenIsRefusedOthersAreNot) {
    startServer({"--connect-rate", "6", "--connect-burst", "3"});
    std::vector<std::unique_ptr<RawClient>> admitted;
    for (int i = 0; i < 3; ++i) {
        admitted.push_back(connectFrom("127.0.0.5"));
        admitted.back()->send(in::kVersionBeforeLogin, "1.0.0");
        admitted.back()->expect(out::kHello);
        admitted.back().reset();  // closed again: it is the rate that counts, not the number open
    }
    auto fourth = connectFrom("127.0.0.5");
    EXPECT_EQ(fourth->expect(kNotice).payload,
              "You are connecting too often. Please wait a minute and try again.");
    EXPECT_TRUE(fourth->waitClosed());
    auto other = connectFrom("127.0.0.6");
    other->send(in::kVersionBeforeLogin, "1.0.0");
    other->expect(out::kHello);
}

TEST_F(AttackTest, FramesAreShortUntilTheLoginAndAllConnectionsShareOneMemoryBudget) {
    addAccount("alice", "secret1");
    const std::vector<std::string> names{"m01", "m02", "m03", "m04", "m05", "m06",
                                         "m07", "m08", "m09", "m10", "m11", "m12"};
    for (const auto& name : names) {
        addAccount(name, "secret1");
    }
    // The members who hold frames back do not read either; pings must not end them first.
    startServer({"--max-payload-before-login", "4096", "--memory-budget", "8", "--max-per-address",
                 "100", "--ping-misses", "1000"});
    auto alice = logIn("alice", "secret1");
    alice->ignore(out::kOnlineCount);

    // Before the password is accepted, 4 KiB is the most; after it, the protocol's own limit.
    auto stranger = greet();
    stranger->send(in::kCredentials, "alice:" + std::string(4097 - 6, 'x'));
    EXPECT_TRUE(stranger->waitClosed());
    alice->send(in::kChangeEmail, std::string(5000, 'x'));
    EXPECT_NE(alice->expect(kNotice).payload.find("e-mail"), std::string::npos);

    // Twelve members each start a frame of almost 1 MiB and never finish it: the budget of 8 MiB
    // ends it for some of them, alice is served on.
    std::vector<std::unique_ptr<RawClient>> hoarders;
    for (const auto& name : names) {
        hoarders.push_back(member(name));
        hoarders.back()->sendRaw(headerAnnouncing(1000000, in::kChangeEmail) +
                                 std::string(999000, 'y'));
    }
    std::this_thread::sleep_for(500ms);
    int dropped = 0;
    for (auto& hoarder : hoarders) {
        dropped += hoarder->waitClosed(100ms) ? 1 : 0;
    }
    EXPECT_GE(dropped, 1);
    EXPECT_LT(dropped, 12);
    EXPECT_GT(logLinesWith("memory budget spent"), 0u);
    expectStillServed(*alice);
}

TEST_F(AttackTest, SignUpTriesAreRationedPerHostTakenNamesIncluded) {
    startServer({"--signups-per-hour", "2"});
    auto first = connect();
    first->send(in::kVersionBeforeSignUp, "1.0.0");
    first->send(in::kRegisterAccount, "carol:secret3:c@example.org");
    EXPECT_EQ(first->expect(kSignUpResult).payload, "Registration Success!");
    auto prober = connect();
    prober->send(in::kVersionBeforeSignUp, "1.0.0");
    prober->send(in::kRegisterAccount, "carol:secret3:c@example.org");
    EXPECT_EQ(prober->expect(kSignUpResult).payload, "Account Creation Error!:That name is taken.");
    prober->send(in::kRegisterAccount, "dave:secret3:d@example.org");
    EXPECT_EQ(prober->expect(kSignUpResult).payload,
              "Account Creation Error!:Too many sign-ups from your address. Please try again "
              "later.");
    // Another host has its own ration.
    auto other = connectFrom("127.0.0.7");
    other->send(in::kVersionBeforeSignUp, "1.0.0");
    other->send(in::kRegisterAccount, "dave:secret3:d@example.org");
    EXPECT_EQ(other->expect(kSignUpResult).payload, "Registration Success!");
}

TEST_F(AttackTest, FramesDroppedByTheThousandWriteAFewLogLines) {
    startServer({"--frame-rate", "100000", "--flood-limit", "1000000"});
    auto noisy = connect();
    std::string frames;
    for (int i = 0; i < 1000; ++i) {
        frames += protocol::EncodeFrame(in::kAskEmail, "");  // dropped: no version yet
    }
    noisy->sendRaw(frames);
    noisy->send(in::kVersionBeforeLogin, "1.0.0");
    noisy->expect(out::kHello);  // all of them were read
    EXPECT_LE(logLinesWith("dropped (1, 8)"), 25u);
}

}  // namespace
}  // namespace tavren::test
