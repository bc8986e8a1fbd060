#pragma once

#include <asio/awaitable.hpp>
#include <string>
#include <vector>

#include "core/protocol/CodePair.h"

namespace tavren::server {

struct Member;

// One feature of the server as the session sees it: the requests it answers, and what it does
// when a member arrives or leaves. A feature gets the member and the payload; everything else it
// needs (its store, the hub that fans out to other members) it was given when it was made, so it
// never reaches into another feature's state.
class FeatureHandler {
  public:
    virtual ~FeatureHandler() = default;

    // The request codes this feature answers.
    virtual std::vector<protocol::CodePair> requests() const = 0;
    // One request of a logged-in member, in the order the member sent them.
    virtual asio::awaitable<void> handle(Member& member, protocol::CodePair code,
                                         std::string payload) = 0;
    // Right after the login answers, before the message of the day.
    virtual void memberArrived(Member& /*member*/) {}
    // The member's session is over: logged out, dropped, or replaced by a new login. Features
    // hear of it in the reverse order of their arrival, so a feature added later (one that may
    // listen to an earlier one) is done with the member before the earlier one lets go of it.
    virtual void memberLeft(Member& /*member*/) {}
    // The member sent a request that shows somebody is there: anything but typing status (and
    // pings' answers, which never get this far). Told before the request is handled.
    virtual void memberActive(Member& /*member*/) {}
};

}  // namespace tavren::server
