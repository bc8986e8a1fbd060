#pragma once

#include <asio/any_io_executor.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "server/base/ServerConfig.h"
#include "server/contacts/Buddy.h"
#include "server/contacts/IdleTracker.h"
#include "server/contacts/PresenceState.h"
#include "server/contacts/WatcherIndex.h"
#include "server/rooms/MembershipListener.h"

namespace tavren::server {

class PresenceHub;
struct Member;

// The presence of the members online, and who hears of it. Each member online has a state
// (online, away with its text, idle, first channel) and a buddy list; a reverse index says who
// watches whom, so a change reaches exactly the online members who have that member on their
// list, through the hub, by name, without looking at anybody else.
//
// A member's changes go out at most once per presence interval: a change within the interval is
// sent at its end, as the state is then (and not at all when it is back where it was), so that
// nobody can make the server flood their watchers by toggling away or hopping channels. Coming
// online and going offline go out at once.
//
// Idle: a member with no request but typing status for the idle time is idle until the next
// request (the session tells of every other request; pings' answers never reach it).
class PresenceService : public MembershipListener {
  public:
    using Clock = std::chrono::steady_clock;

    PresenceService(PresenceHub& hub, const ContactLimits& limits, asio::any_io_executor executor);

    // From here on nothing more is sent and no timer runs, so that the event loop can run out of
    // work; members still leave cleanly.
    void stop();

    // The member is online with this buddy list. With `tellMember`, the member gets the list and
    // a record for every buddy; the watchers hear that the member is online.
    void arrive(const Member& member, std::vector<Buddy> buddies, bool tellMember = true);
    // The member's session is over: the watchers hear that the member is offline.
    void leave(const Member& member);
    // Any request but typing status: an idle member is active again.
    void active(const Member& member);
    void setAway(const Member& member, const std::string& text);
    void setBack(const Member& member);
    void firstChannelChanged(const std::string& memberName, std::uint64_t sessionId,
                             const std::string& channel) override;

    // The member's list as it stands (empty for a member who is not online).
    const std::vector<Buddy>& buddiesOf(const Member& member) const;
    // A new list for the member, already stored; the index follows it.
    void replaceBuddies(const Member& member, std::vector<Buddy> buddies);
    // (2, 13) the member's list, then a record for every buddy as its watchers last heard it.
    void sendList(const Member& member) const;

  private:
    struct OnlineMember {
        std::string name;
        std::uint64_t sessionId = 0;
        std::vector<Buddy> buddies;
        PresenceState state;      // as it is
        PresenceState published;  // as the watchers last heard it
        Clock::time_point publishedAt;
        bool publishPending = false;
        std::unique_ptr<asio::steady_timer> publishTimer;
    };

    OnlineMember* find(std::uint64_t sessionId);
    const OnlineMember* findByName(std::string_view name) const;
    void remove(std::uint64_t sessionId, bool announce);
    void changed(OnlineMember& member);
    void publish(OnlineMember& member);
    void tellWatchers(const std::string& name, const PresenceState& state);
    void armIdleTimer();
    void idleTimeReached();

    PresenceHub& hub_;
    const ContactLimits& limits_;
    asio::any_io_executor executor_;
    asio::steady_timer idleTimer_;
    bool idleTimerArmed_ = false;
    bool stopped_ = false;
    IdleTracker idle_;
    WatcherIndex watchers_;
    std::unordered_map<std::uint64_t, OnlineMember> online_;        // by session id
    std::unordered_map<std::string, std::uint64_t> sessionByName_;  // by lower-case name
};

}  // namespace tavren::server
