#include "server/base/LogThrottle.h"

#include <algorithm>

namespace tavren::server {

bool LogThrottle::allow(const std::string& source, Clock::time_point now, std::size_t& leftOut) {
    const double perSecond = 1.0 / std::chrono::duration<double>(interval_).count();
    const auto refilled = [&](const Budget& budget) {
        const double elapsed = std::chrono::duration<double>(now - budget.last).count();
        return std::min<double>(burst_, budget.lines + std::max(0.0, elapsed) * perSecond);
    };
    if (budgets_.size() >= pruneAt_) {
        // A source whose budget is whole again and that skipped nothing has nothing to remember.
        std::erase_if(budgets_, [&](const auto& entry) {
            return entry.second.skipped == 0 && refilled(entry.second) >= burst_;
        });
        pruneAt_ = std::max<std::size_t>(1024, budgets_.size() * 2);
    }
    auto [entry, added] = budgets_.try_emplace(source, Budget{double(burst_), now});
    Budget& budget = entry->second;
    budget.lines = refilled(budget);
    budget.last = now;
    if (budget.lines < 1.0) {
        ++budget.skipped;
        return false;
    }
    budget.lines -= 1.0;
    leftOut = budget.skipped;
    budget.skipped = 0;
    return true;
}

}  // namespace tavren::server
