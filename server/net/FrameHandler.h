#pragma once

#include <asio/awaitable.hpp>
#include <functional>
#include <memory>

#include "core/protocol/Frame.h"
#include "server/net/ClientLink.h"

namespace tavren::server {

// What stands behind one connection and makes sense of its frames: the session. The connection
// hands it each frame in arrival order and waits for it, so it never sees two frames at once.
// The network layer knows nothing more of sessions than this.
class FrameHandler {
  public:
    virtual ~FrameHandler() = default;

    virtual asio::awaitable<void> handle(protocol::Frame frame) = 0;
    // The connection is closing or gone; further frames are not handled. Safe to call more than
    // once.
    virtual void disconnected() = 0;
    // Until this is true the login deadline applies.
    virtual bool loggedIn() const = 0;
    // True once the client's password has been accepted: from then on it may send frames up to
    // the full payload limit, before that only short ones.
    virtual bool authenticated() const { return loggedIn(); }
};

// Makes the handler of a new connection. `link` is the connection; `sharedLink` is the same link
// as others may keep it (the presence hub), which expires when the connection is gone.
using FrameHandlerFactory = std::function<std::unique_ptr<FrameHandler>(
    ClientLink& link, std::weak_ptr<ClientLink> sharedLink)>;

}  // namespace tavren::server
