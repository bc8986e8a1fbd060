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

class ChannelGate;
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
    // `membership` hears of every change of a member's first channel; `gate` decides who gets in.
    RoomService(ChannelStore& store, PresenceHub& hub, MembershipListener& membership,
                ChannelGate& gate, const RoomLimits& limits, asio::any_io_executor executor);

    // Makes the configured channels official, clears expired channels, and clears them again
    // every hour from then on.
    void start();
    // Stops the hourly upkeep and any pending list, so that the event loop can run out of work.
    void stop();

    // Joins (and, when there is no such channel, creates) a channel. A protected channel that does
    // not let the member in as they are asks for its password with (2, 4) channel ":" sentence.
    void join(Member& member, std::string_view requestedName, std::string_view password = {});
    // Creates a channel with a password (empty for none) and a topic, hosted by the member, who
    // joins it. Refusals are notices.
    void create(Member& member, std::string_view requestedName, std::string_view password,
                std::string_view topic);
    void leave(Member& member, std::string_view requestedName);
    void leaveAll(Member& member);
    // Takes a member out of a channel on somebody else's word: the member gets (2, 20) channel
    // ":" why, the others the new member list. False when the member is not in it.
    bool remove(std::string_view memberName, ActiveChannel& channel, std::string_view why);

    // The channel of that name that somebody is in, or nullptr.
    ActiveChannel* active(std::string_view name);
    // A channel of the directory: the stored channel and how many members are in it now.
    struct Listed {
        Channel channel;
        std::size_t members = 0;
    };
    // Up to `limit` channels: those in use first, the busiest first, official before member
    // channels, then by name.
    std::vector<Listed> directory(std::size_t limit);

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

    // The member's own channels, after dropping what an earlier login of the account left.
    MemberChannels& ownChannels(const Member& member);
    std::string tooManyChannels(const Member& member);
    ActiveChannel* activate(Member& member, std::string_view name, const std::string& key);
    void releaseIfEmpty(const std::string& key);
    void refuseJoin(Member& member, std::string_view name, std::string_view why);
    void answerJoin(Member& member, ActiveChannel& channel, bool nothingChanged);
    // Takes the member out of the channel, leaving the member's own index to the caller.
    void removeMember(const std::string& channelKey, const std::string& memberKey);
    void membersChanged(ActiveChannel& channel, Member* joiner);
    void sendListToAll(ActiveChannel& channel);
    std::string listPayload(const ActiveChannel& channel) const;
    void scheduleSweep();
    void tellFirstChannel(const std::string& memberName, std::uint64_t sessionId,
                          const std::vector<std::string>& keys);
    static std::int64_t unixNow();

    ChannelStore& store_;
    PresenceHub& hub_;
    MembershipListener& membership_;
    ChannelGate& gate_;
    const RoomLimits& limits_;
    asio::any_io_executor executor_;
    asio::steady_timer sweepTimer_;
    bool stopped_ = false;
    std::unordered_map<std::string, std::unique_ptr<ActiveChannel>> active_;  // by lower-case name
    std::unordered_map<std::string, MemberChannels> memberChannels_;  // by lower-case member name
};

}  // namespace tavren::server
