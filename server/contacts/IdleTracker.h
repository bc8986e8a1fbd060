#pragma once

#include <chrono>
#include <cstdint>
#include <list>
#include <optional>
#include <unordered_map>
#include <vector>

namespace tavren::server {

// Who has been quiet for how long. The members who are active are kept in the order of their
// last request, oldest first, so a request costs a move to the back and finding who has become
// idle looks at the front only, never at everyone online. Members are known by session id.
class IdleTracker {
  public:
    using Clock = std::chrono::steady_clock;

    explicit IdleTracker(Clock::duration idleAfter) : idleAfter_(idleAfter) {}

    // A member arrives, active.
    void add(std::uint64_t id, Clock::time_point now);
    void remove(std::uint64_t id);
    // A request from the member: true when the member was idle until now. Unknown ids are
    // ignored.
    bool touch(std::uint64_t id, Clock::time_point now);
    // The members whose quiet time has run out by `now`, oldest first; each is reported once and
    // stays idle until touched.
    std::vector<std::uint64_t> expire(Clock::time_point now);
    // When the next member becomes idle; nothing while nobody is active.
    std::optional<Clock::time_point> nextDeadline() const;

  private:
    struct Active {
        std::uint64_t id;
        Clock::time_point lastSeen;
    };
    using ActiveList = std::list<Active>;

    Clock::duration idleAfter_;
    ActiveList active_;  // oldest request first
    // Every member tracked: where it stands in `active_`, or nothing while idle.
    std::unordered_map<std::uint64_t, std::optional<ActiveList::iterator>> members_;
};

}  // namespace tavren::server
