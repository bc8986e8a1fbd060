#pragma once

#include <asio/steady_timer.hpp>
#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "server/rooms/Channel.h"

namespace tavren::server {

// One member in one channel, as much as the member list and the rights need.
struct ChannelMember {
    std::string name;
    std::int64_t accountId = 0;
    int staffLevel = 0;
    std::uint64_t sessionId = 0;  // the login that joined; a later login is somebody new
};

// A channel somebody is in: the stored channel and who is in it. Membership lives only here (after
// a restart clients join again).
struct ActiveChannel {
    Channel channel;
    std::map<std::string, ChannelMember> members;  // by lower-case name
    std::vector<std::string> names;                // the same members, ready for a fan-out

    // The member list of a crowded channel is sent at most once per window (see RoomService).
    std::chrono::steady_clock::time_point listSentAt{};
    bool listPending = false;
    std::unique_ptr<asio::steady_timer> listTimer;
};

}  // namespace tavren::server
