#include "server/contacts/PresenceService.h"

#include "core/protocol/Catalogue.h"
#include "server/base/AsciiText.h"
#include "server/contacts/BuddyList.h"
#include "server/net/PresenceHub.h"
#include "server/session/Member.h"

namespace tavren::server {

namespace out = protocol::server_to_client;

PresenceService::PresenceService(PresenceHub& hub, const ContactLimits& limits,
                                 asio::any_io_executor executor)
    : hub_(hub),
      limits_(limits),
      executor_(std::move(executor)),
      idleTimer_(executor_),
      idle_(limits.idleAfter) {}

void PresenceService::stop() {
    stopped_ = true;
    idleTimer_.cancel();
    for (auto& [id, member] : online_) {
        if (member.publishTimer) {
            member.publishTimer->cancel();
        }
    }
}

void PresenceService::arrive(const Member& member, std::vector<Buddy> buddies, bool tellMember) {
    // A login replacing another has seen the old one leave already; anything left is stale.
    if (const auto* stale = findByName(member.name())) {
        remove(stale->sessionId, false);
    }
    const auto now = Clock::now();
    OnlineMember& entry = online_[member.sessionId];
    entry.name = member.name();
    entry.sessionId = member.sessionId;
    entry.buddies = std::move(buddies);
    entry.state.online = true;
    entry.published = entry.state;
    entry.publishedAt = now;
    sessionByName_[AsciiText::lower(entry.name)] = member.sessionId;
    idle_.add(member.sessionId, now);
    armIdleTimer();
    // The watchers first, so that a member who has herself on her list does not hear of her
    // arrival twice: her list says it already.
    if (!stopped_) {
        tellWatchers(entry.name, entry.published);
    }
    watchers_.watch(entry.name, entry.buddies);
    if (tellMember) {
        sendList(member);
    }
}

void PresenceService::leave(const Member& member) {
    remove(member.sessionId, !stopped_);
}

void PresenceService::remove(std::uint64_t sessionId, bool announce) {
    const auto found = online_.find(sessionId);
    if (found == online_.end()) {
        return;
    }
    OnlineMember& entry = found->second;
    if (entry.publishTimer) {
        entry.publishTimer->cancel();
    }
    watchers_.unwatch(entry.name, entry.buddies);
    idle_.remove(sessionId);
    const std::string name = std::move(entry.name);
    sessionByName_.erase(AsciiText::lower(name));
    online_.erase(found);
    if (announce) {
        tellWatchers(name, PresenceState{});
    }
}

void PresenceService::active(const Member& member) {
    if (idle_.touch(member.sessionId, Clock::now())) {
        if (OnlineMember* entry = find(member.sessionId)) {
            entry->state.idle = false;
            changed(*entry);
        }
    }
    armIdleTimer();
}

void PresenceService::setAway(const Member& member, const std::string& text) {
    if (OnlineMember* entry = find(member.sessionId)) {
        entry->state.away = true;
        entry->state.awayText = text;
        changed(*entry);
    }
}

void PresenceService::setBack(const Member& member) {
    if (OnlineMember* entry = find(member.sessionId)) {
        entry->state.away = false;
        entry->state.awayText.clear();
        changed(*entry);
    }
}

void PresenceService::firstChannelChanged(const std::string& /*memberName*/,
                                          std::uint64_t sessionId, const std::string& channel) {
    // A session that has left already (its channels are left after it) has nobody to tell.
    if (OnlineMember* entry = find(sessionId)) {
        entry->state.channel = channel;
        changed(*entry);
    }
}

const std::vector<Buddy>& PresenceService::buddiesOf(const Member& member) const {
    static const std::vector<Buddy> kNone;
    const auto found = online_.find(member.sessionId);
    return found == online_.end() ? kNone : found->second.buddies;
}

void PresenceService::replaceBuddies(const Member& member, std::vector<Buddy> buddies) {
    OnlineMember* entry = find(member.sessionId);
    if (entry == nullptr) {
        return;
    }
    watchers_.unwatch(entry->name, entry->buddies);
    entry->buddies = std::move(buddies);
    watchers_.watch(entry->name, entry->buddies);
}

void PresenceService::sendList(const Member& member) const {
    const std::vector<Buddy>& buddies = buddiesOf(member);
    member.link.send(out::kBuddyPresence, BuddyList::serialise(buddies));
    static const PresenceState kOffline;
    for (const Buddy& buddy : buddies) {
        // As the other watchers last heard it: a change still waiting reaches this member too.
        const OnlineMember* other = findByName(buddy.name);
        const PresenceState& state = other != nullptr ? other->published : kOffline;
        member.link.send(out::kBuddyPresence, state.recordFor(buddy.folder, buddy.name));
    }
}

PresenceService::OnlineMember* PresenceService::find(std::uint64_t sessionId) {
    const auto found = online_.find(sessionId);
    return found == online_.end() ? nullptr : &found->second;
}

const PresenceService::OnlineMember* PresenceService::findByName(std::string_view name) const {
    const auto session = sessionByName_.find(AsciiText::lower(name));
    if (session == sessionByName_.end()) {
        return nullptr;
    }
    const auto found = online_.find(session->second);
    return found == online_.end() ? nullptr : &found->second;
}

void PresenceService::changed(OnlineMember& member) {
    if (stopped_ || member.publishPending) {
        return;  // a record is due anyway, and it will carry this change
    }
    const auto due = member.publishedAt + limits_.presenceInterval;
    if (Clock::now() >= due) {
        publish(member);
        return;
    }
    member.publishPending = true;
    if (!member.publishTimer) {
        member.publishTimer = std::make_unique<asio::steady_timer>(executor_);
    }
    member.publishTimer->expires_at(due);
    member.publishTimer->async_wait([this, id = member.sessionId](const asio::error_code& error) {
        if (error || stopped_) {
            return;
        }
        if (OnlineMember* entry = find(id); entry != nullptr && entry->publishPending) {
            publish(*entry);
        }
    });
}

void PresenceService::publish(OnlineMember& member) {
    member.publishPending = false;
    member.publishedAt = Clock::now();
    if (member.state == member.published) {
        return;  // changed and changed back: the watchers know this already
    }
    member.published = member.state;
    tellWatchers(member.name, member.published);
}

void PresenceService::tellWatchers(const std::string& name, const PresenceState& state) {
    for (const WatcherIndex::Audience& audience : watchers_.audienceOf(name)) {
        hub_.sendTo(audience.watchers, out::kBuddyPresence, state.recordFor(audience.folder, name));
    }
}

void PresenceService::armIdleTimer() {
    if (idleTimerArmed_ || stopped_) {
        return;
    }
    const auto deadline = idle_.nextDeadline();
    if (!deadline) {
        return;
    }
    // Requests only ever move deadlines later, so the timer set for the earliest one never
    // needs to be set earlier; when it finds nobody idle yet, it sets itself again.
    idleTimerArmed_ = true;
    idleTimer_.expires_at(*deadline);
    idleTimer_.async_wait([this](const asio::error_code& error) {
        idleTimerArmed_ = false;
        if (error || stopped_) {
            return;
        }
        idleTimeReached();
    });
}

void PresenceService::idleTimeReached() {
    for (const std::uint64_t id : idle_.expire(Clock::now())) {
        if (OnlineMember* entry = find(id)) {
            entry->state.idle = true;
            changed(*entry);
        }
    }
    armIdleTimer();
}

}  // namespace tavren::server
