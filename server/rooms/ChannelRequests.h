#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "server/rooms/RoomService.h"
#include "server/session/FeatureHandler.h"

namespace tavren::server {

class AccountStore;
class ChannelInvitations;
class OnlineMembers;

// The requests of the channel windows: the directory (2, 2), invitations (2, 3) and creating a
// channel with a password and a topic (2, 5). An invitation reaches the invited member as (2, 3)
// "Invite: " inviter ";" channel and waits for them in `invitations` until they log out.
class ChannelRequests : public FeatureHandler {
  public:
    // The directory lists at most this many channels, so that it always fits one payload.
    static constexpr std::size_t kDirectoryLimit = 1000;

    ChannelRequests(RoomService& rooms, AccountStore& accounts, OnlineMembers& online,
                    ChannelInvitations& invitations)
        : rooms_(rooms), accounts_(accounts), online_(online), invitations_(invitations) {}

    // (2, 2): for every channel, name, members, topic, official, protected, the fields separated
    // by U+0001 and each record ended by U+0002.
    static std::string directoryPayload(const std::vector<RoomService::Listed>& channels);

    std::vector<protocol::CodePair> requests() const override;
    asio::awaitable<void> handle(Member& member, protocol::CodePair code,
                                 std::string payload) override;
    void memberLeft(Member& member) override;

  private:
    void invite(Member& member, const std::string& payload);
    void create(Member& member, const std::string& payload);
    // Invitations and directories are relayed or built for the asking, so each costs a line of
    // the member's line meter; false, with a notice, when none is left.
    bool takeLine(Member& member);

    RoomService& rooms_;
    AccountStore& accounts_;
    OnlineMembers& online_;
    ChannelInvitations& invitations_;
};

}  // namespace tavren::server
