#pragma once

#include <cstdint>
#include <thread>
#include <vector>

namespace tavren::bench {

// The yardstick: the least a chat server can do for one channel. It takes every connection, and
// every channel line (2, 7) one of them sends it writes straight back to all of them as the
// relayed line, in one thread, with no login, no queues, no limits. What tavrend costs beyond
// this is the cost of being a server.
class FanOutPeer {
  public:
    FanOutPeer();
    ~FanOutPeer();
    FanOutPeer(const FanOutPeer&) = delete;
    FanOutPeer& operator=(const FanOutPeer&) = delete;

    std::uint16_t port() const { return port_; }

  private:
    void run();

    int listener_ = -1;
    int stopEvent_ = -1;
    std::uint16_t port_ = 0;
    std::vector<int> connections_;
    std::thread thread_;
};

}  // namespace tavren::bench
