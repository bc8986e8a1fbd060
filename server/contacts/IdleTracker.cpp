#include "server/contacts/IdleTracker.h"

namespace tavren::server {

void IdleTracker::add(std::uint64_t id, Clock::time_point now) {
    remove(id);
    members_[id] = active_.insert(active_.end(), Active{id, now});
}

void IdleTracker::remove(std::uint64_t id) {
    const auto member = members_.find(id);
    if (member == members_.end()) {
        return;
    }
    if (member->second) {
        active_.erase(*member->second);
    }
    members_.erase(member);
}

bool IdleTracker::touch(std::uint64_t id, Clock::time_point now) {
    const auto member = members_.find(id);
    if (member == members_.end()) {
        return false;
    }
    if (member->second) {
        ActiveList::iterator entry = *member->second;
        entry->lastSeen = now;
        active_.splice(active_.end(), active_, entry);
        return false;
    }
    member->second = active_.insert(active_.end(), Active{id, now});
    return true;
}

std::vector<std::uint64_t> IdleTracker::expire(Clock::time_point now) {
    std::vector<std::uint64_t> expired;
    while (!active_.empty() && now - active_.front().lastSeen >= idleAfter_) {
        const std::uint64_t id = active_.front().id;
        active_.pop_front();
        members_[id].reset();
        expired.push_back(id);
    }
    return expired;
}

std::optional<IdleTracker::Clock::time_point> IdleTracker::nextDeadline() const {
    if (active_.empty()) {
        return std::nullopt;
    }
    return active_.front().lastSeen + idleAfter_;
}

}  // namespace tavren::server
