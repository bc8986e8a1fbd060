#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "server/rooms/RoomCommand.h"

namespace tavren::server {

class AccountStore;
class ChannelVotes;
class ModerationCommands;
class PresenceHub;
class RoomService;
struct ActiveChannel;
struct Member;

// The commands a member types in a channel ("/topic", "/motd", "/stats", "/time", "/help",
// "/info NAME"), and the way to moderation and votes. Every answer is a "**ChanHost" line in that
// channel, to the member who typed the command, except a new topic, which everyone in the channel
// hears of.
class ServerCommands {
  public:
    ServerCommands(RoomService& rooms, AccountStore& accounts, PresenceHub& hub,
                   ModerationCommands& moderation, ChannelVotes& votes,
                   const std::string& messageOfTheDay, std::size_t maxTopic);

    void run(Member& member, ActiveChannel& channel, std::string_view text);

  private:
    void topic(Member& member, ActiveChannel& channel, const std::string& newTopic);
    std::string stats();
    std::string info(const std::string& name);

    RoomService& rooms_;
    AccountStore& accounts_;
    PresenceHub& hub_;
    ModerationCommands& moderation_;
    ChannelVotes& votes_;
    const std::string& messageOfTheDay_;
    std::size_t maxTopic_;
    std::chrono::steady_clock::time_point startedAt_ = std::chrono::steady_clock::now();
};

}  // namespace tavren::server
