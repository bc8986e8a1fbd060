#pragma once

#include <cstddef>
#include <deque>
#include <optional>

#include "server/net/ClientLink.h"

namespace tavren::server {

// Frames waiting to be written to one client, bounded in count and in bytes. When a push does not
// fit, the client is not reading fast enough and the caller drops it: nobody else ever waits for
// a slow reader, and its memory stays bounded. A frame shared with other queues counts in full
// here, as it would if this client were the last one holding it.
class OutgoingQueue {
  public:
    static constexpr std::size_t kDefaultByteLimit = 8u << 20;

    explicit OutgoingQueue(std::size_t frameLimit, std::size_t byteLimit = kDefaultByteLimit)
        : frameLimit_(frameLimit), byteLimit_(byteLimit) {}

    // False, with nothing queued, when the frame does not fit.
    bool push(SharedFrame frame);
    // The i-th frame from the front; frames stay where they are while others are pushed behind.
    const std::string& at(std::size_t i) const { return *(*frames_)[i]; }
    const std::string& front() const { return at(0); }
    // Removes `count` frames from the front.
    void pop(std::size_t count = 1);
    bool empty() const { return !frames_; }
    std::size_t size() const { return frames_ ? frames_->size() : 0; }
    std::size_t bytes() const { return bytes_; }

  private:
    // Made with the first frame and given back with the last, so an idle client costs no block.
    std::optional<std::deque<SharedFrame>> frames_;
    std::size_t frameLimit_;
    std::size_t byteLimit_;
    std::size_t bytes_ = 0;
};

}  // namespace tavren::server
