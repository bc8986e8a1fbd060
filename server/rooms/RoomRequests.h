#pragma once

#include "server/base/ServerConfig.h"
#include "server/session/FeatureHandler.h"

namespace tavren::server {

class RoomService;
class ServerCommands;

// The requests of the room window: join (2, 4), leave (2, 6), leave all (1, 9) and channel lines
// (2, 7), which are either relayed or, when they start with "/", server commands. A member who
// arrives is told the line meter (2, 16); one who leaves leaves every channel.
class RoomRequests : public FeatureHandler {
  public:
    RoomRequests(RoomService& rooms, ServerCommands& commands, const RoomLimits& limits)
        : rooms_(rooms), commands_(commands), limits_(limits) {}

    std::vector<protocol::CodePair> requests() const override;
    asio::awaitable<void> handle(Member& member, protocol::CodePair code,
                                 std::string payload) override;
    void memberArrived(Member& member) override;
    void memberLeft(Member& member) override;

  private:
    void line(Member& member, const std::string& payload);

    RoomService& rooms_;
    ServerCommands& commands_;
    const RoomLimits& limits_;
};

}  // namespace tavren::server
