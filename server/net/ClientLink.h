#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "core/protocol/CodePair.h"

namespace tavren::server {

// A whole encoded frame, shared by every receiver of a fan-out so that it is encoded and held in
// memory once however many members it goes to.
using SharedFrame = std::shared_ptr<const std::string>;

// What the rest of the server may do with one connected client: queue a frame for it, or end the
// connection. Everything here returns at once; writing happens behind it, and nothing here calls
// back into the caller (a client dropped for not reading is dropped after the caller returns).
class ClientLink {
  public:
    virtual ~ClientLink() = default;

    // Queues one frame. A client whose queue is full is dropped, and the frame is lost with it.
    virtual void send(protocol::CodePair code, std::string_view payload) = 0;
    // Queues a frame encoded once for many receivers.
    virtual void sendFrame(SharedFrame frame) = 0;
    // Writes what is queued, then closes. `reason` goes to the log.
    virtual void finish(std::string_view reason) = 0;
    // The remote address, for logs and limits.
    virtual const std::string& peerAddress() const = 0;
    // The key per-address limits count this client under (see AddressGroup).
    virtual const std::string& addressGroup() const { return peerAddress(); }
    // True once the client's TLS handshake is done; false for the plain protocol.
    virtual bool encrypted() const { return false; }
};

}  // namespace tavren::server
