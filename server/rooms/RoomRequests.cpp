#include "server/rooms/RoomRequests.h"

#include "core/protocol/Catalogue.h"
#include "core/protocol/Fields.h"
#include "server/base/Log.h"
#include "server/rooms/RoomService.h"
#include "server/rooms/ServerCommands.h"
#include "server/session/Member.h"

namespace tavren::server {

namespace in = protocol::client_to_server;
namespace out = protocol::server_to_client;

namespace {

constexpr std::string_view kLeaveAll = "leaveall";

}  // namespace

std::vector<protocol::CodePair> RoomRequests::requests() const {
    return {in::kJoinRoom, in::kLeaveRoom, in::kRoomWindowRequest, in::kRoomLine};
}

asio::awaitable<void> RoomRequests::handle(Member& member, protocol::CodePair code,
                                           std::string payload) {
    // Nothing here waits: a request is answered whole before the next member's is looked at, so
    // no member sees a channel half-changed.
    if (code == in::kJoinRoom) {
        // A channel name holds no ":", so what follows one is the password of a protected
        // channel, sent from the client's password prompt.
        const auto fields = protocol::SplitFields(payload, protocol::kFieldSeparator, 2);
        rooms_.join(member, protocol::FieldAt(fields, 0), protocol::FieldAt(fields, 1));
    } else if (code == in::kLeaveRoom) {
        rooms_.leave(member, payload);
    } else if (code == in::kRoomWindowRequest) {
        if (payload == kLeaveAll) {
            rooms_.leaveAll(member);
        }
    } else if (code == in::kRoomLine) {
        line(member, payload);
    }
    co_return;
}

void RoomRequests::line(Member& member, const std::string& payload) {
    const auto fields = protocol::SplitFields(payload, protocol::kFieldSeparator, 2);
    ActiveChannel* channel = rooms_.channelOf(member, protocol::FieldAt(fields, 0));
    if (channel == nullptr) {
        Log::info("dropped a line from " + member.name() + " to " +
                  Log::quoted(protocol::FieldAt(fields, 0)) + ": not a member of it");
        return;
    }
    const std::string_view text = protocol::FieldAt(fields, 1);
    if (text.empty()) {
        return;
    }
    if (text.size() > limits_.maxLine) {
        rooms_.tellMember(member, *channel,
                          "Your line was not sent: a line holds at most " +
                              std::to_string(limits_.maxLine) + " characters.");
        return;
    }
    if (!member.lines.take(LineBucket::Clock::now())) {
        rooms_.tellMember(member, *channel,
                          "You are sending lines too fast. Wait a moment, then try again.");
        return;
    }
    if (text.front() == '/') {
        commands_.run(member, *channel, text);
    } else {
        rooms_.relay(*channel, member, text);
    }
}

void RoomRequests::memberArrived(Member& member) {
    member.link.send(out::kFloodMeters, std::to_string(limits_.floodLines) + ";" +
                                            std::to_string(limits_.floodInterval.count()));
}

void RoomRequests::memberLeft(Member& member) {
    rooms_.leaveAll(member);
}

}  // namespace tavren::server
