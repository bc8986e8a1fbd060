#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "BenchSocket.h"

namespace tavren::bench {

struct LoadFigures {
    double linesPerSecond = 0;  // lines delivered to every member, per second
    double p50Micros = 0;       // from the sender's write to a member's read, over every delivery
    double p99Micros = 0;
};

// tavrend's login handshake for `name` (password TavrendUnderTest::kPassword), then a join of
// the benchmark's channel.
void logInToChannel(BenchSocket& socket, const std::string& name);

// One sender and `members` members in one channel on `port`. With `logIn`, each goes through
// tavrend's handshake and joins "Bench Room"; without, the connection alone makes it a member
// (the fan-out peer). Lines carry their number and the time they were written, so every member's
// read of every line is one latency sample.
class ChannelLoad {
  public:
    ChannelLoad(std::uint16_t port, int members, bool logIn, bool encrypted = false);

    // Every line as fast as the sender can write it: throughput, from the first write to the
    // last member's read of the last line.
    LoadFigures blast(int lines);
    // Lines at a steady rate the server keeps up with: the latency a member sees.
    LoadFigures paced(int lines, double perSecond);

  private:
    LoadFigures run(int lines, double perSecond);
    // A marker line read by every member, so that what setup left unread is out of the way.
    void synchronise();

    std::vector<std::unique_ptr<BenchSocket>> sockets_;  // the sender last
    BenchSocket* sender_ = nullptr;
};

}  // namespace tavren::bench
