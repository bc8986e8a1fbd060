#include "server/accounts/FailureLedger.h"

#include <algorithm>

namespace tavren::server {

FailureLedger::Clock::duration FailureLedger::backoffAfter(int failures) const {
    if (failures < freeFailures_) {
        return Clock::duration::zero();
    }
    // 1 s after the last free failure, doubling; the shift stops long before it could overflow.
    const int doublings = std::min(failures - freeFailures_, 30);
    const Clock::duration wait = std::chrono::seconds(std::int64_t{1} << doublings);
    return std::min(wait, maxBackoff_);
}

FailureLedger::Clock::duration FailureLedger::waitFor(const std::string& source,
                                                      Clock::time_point now) const {
    const auto entry = entries_.find(source);
    if (entry == entries_.end() || now - entry->second.last >= forgetAfter_) {
        return Clock::duration::zero();
    }
    const Clock::time_point allowedAt = entry->second.last + backoffAfter(entry->second.failures);
    return allowedAt > now ? allowedAt - now : Clock::duration::zero();
}

void FailureLedger::recordFailure(const std::string& source, Clock::time_point now) {
    if (entries_.size() >= pruneAt_) {
        // Only sources that failed within the forgetting time are kept; the next prune waits for
        // the table to double, so recording stays O(1) on average.
        std::erase_if(entries_,
                      [&](const auto& entry) { return now - entry.second.last >= forgetAfter_; });
        pruneAt_ = std::max<std::size_t>(1024, entries_.size() * 2);
    }
    Entry& entry = entries_[source];
    if (entry.failures > 0 && now - entry.last >= forgetAfter_) {
        entry.failures = 0;
    }
    ++entry.failures;
    entry.last = now;
}

}  // namespace tavren::server
