#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "BenchSocket.h"
#include "ChannelLoad.h"

namespace tavren::bench {

// One sender and N watchers on one tavrend: every watcher has the sender on its buddy list, and
// all of them are in one channel. The same sockets then carry either presence records (the
// sender changes its away text, each change a record to every watcher) or channel lines (the
// sender talks in the channel), so the two fan-outs are measured side by side, one the yardstick
// of the other. Every change and every line carries its number and the time it was written.
class PresenceLoad {
  public:
    enum class Kind { kPresence, kChannelLine };

    // Needs a server that sends every presence change at once (--presence-interval 0).
    PresenceLoad(std::uint16_t port, int watchers);

    // As fast as the sender can write: throughput. At a steady rate: latency.
    LoadFigures blast(Kind kind, int changes);
    LoadFigures paced(Kind kind, int changes, double perSecond);

  private:
    LoadFigures run(Kind kind, int changes, double perSecond);
    // A marker of each kind read by everyone, so that what setup left unread is out of the way.
    void synchronise();

    std::vector<std::unique_ptr<BenchSocket>> sockets_;  // the sender last
    BenchSocket* sender_ = nullptr;
};

}  // namespace tavren::bench
