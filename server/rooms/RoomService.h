#pragma once

#include <asio/any_io_executor.hpp>
#include <asio/steady_timer.hpp>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "server/base/ServerConfig.h"
#include "server/rooms/ActiveChannel.h"

namespace tavren::server {

class ChannelStore;
class MembershipListener;
class PresenceHub;
struct Member;

// The channels: who is in which, joining (and so creating) and leaving, relaying lines, and the
// upkeep of stored channels. Everything reaches other members through the hub, by name.
//
// The member list is sent whole on every change. In a crowded channel that is a lot of bytes for
// every join and leave (2,000 members get 2,000 lists of some 40 KB each), so a channel of 64
// members or more sends its list at most once per window that grows with the square of its size
// (4 ms at 64 members, 1 s at 1,000, 4 s at 2,000): churn costs a bounded number of bytes per
// second, however fast members come and go. A joiner always gets the current list at once.
class RoomService {
  public:
    // `membership` hears of every change of a member's first channel.
    RoomService(ChannelStore& store, PresenceHub& hub, MembershipListener& membership,
                const RoomLimits& limits, asio::any_io_executor executor);

    // Makes the configured channels official, clears expired channels, and clears them again
    // every hour from then on.
    void start();
    // Stops the hourly upkeep and any pending list, so that the event loop can run out of work.
    void stop();

    void join(Member& member, std::string_view requestedName);
    void leave(Member& member, std::string_view requestedName);
    void leaveAll(Member& member);

    // The channel of that name if this member (this login) is in it; nullptr otherwise.
    ActiveChannel* channelOf(const Member& member, std::string_view name);
    // A member's line to everyone in the channel, the sender included.
    void relay(const ActiveChannel& channel, const Member& sender, std::string_view text);
    // Server lines, sender "**ChanHost": to one member, or to everyone in the channel.
    void tellMember(const Member& member, const ActiveChannel& channel, std::string_view text);
    void tellChannel(const ActiveChannel& channel, std::string_view text);
    void setTopic(ActiveChannel& channel, const std::string& topic);

    // The channels a member is in, as spelled, in the order joined.
    std::vector<std::string> channelsOf(std::string_view memberName) const;
    std::size_t channelsInUse() const { return active_.size(); }
    std::size_t channelCount();
    // Removes member channels that nobody has used since the expiry time.
    void removeExpired();

  private:
    struct MemberChannels {
        std::uint64_t sessionId = 0;
        std::vector<std::string> keys;  // lower-case channel names, in the order joined
    };

    ActiveChannel* activate(Member& member, std::string_view name, const std::string& key);
    void refuseJoin(Member& member, std::string_view name, std::string_view why);
    void answerJoin(Member& member, ActiveChannel& channel, bool nothingChanged);
    // Takes the member out of the channel, leaving the member's own index to the caller.
    void removeMember(const std::string& channelKey, const std::string& memberKey);
    void membersChanged(ActiveChannel& channel, Member* joiner);
    void sendListToAll(ActiveChannel& channel);
    std::string listPayload(const ActiveChannel& channel) const;
    void scheduleSweep();
    void tellFirstChannel(const Member& member, const std::vector<std::string>& keys);
    static std::int64_t unixNow();

    ChannelStore& store_;
    PresenceHub& hub_;
    MembershipListener& membership_;
    const RoomLimits& limits_;
    asio::any_io_executor executor_;
    asio::steady_timer sweepTimer_;
    bool stopped_ = false;
    std::unordered_map<std::string, std::unique_ptr<ActiveChannel>> active_;  // by lower-case name
    std::unordered_map<std::string, MemberChannels> memberChannels_;  // by lower-case member name
};

}  // namespace tavren::server
