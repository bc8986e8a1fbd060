#pragma once

#include <string>
#include <string_view>

#include "core/protocol/CodePair.h"

namespace tavren::server {

// What the rest of the server may do with one connected client: queue a frame for it, or end the
// connection. Everything here returns at once; writing happens behind it.
class ClientLink {
  public:
    virtual ~ClientLink() = default;

    // Queues one frame. A client whose queue is full is dropped, and the frame is lost with it.
    virtual void send(protocol::CodePair code, std::string_view payload) = 0;
    // Writes what is queued, then closes. `reason` goes to the log.
    virtual void finish(std::string_view reason) = 0;
    // The remote address, for logs and limits.
    virtual const std::string& peerAddress() const = 0;
};

}  // namespace tavren::server
