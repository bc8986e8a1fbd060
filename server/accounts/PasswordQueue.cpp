#include "server/accounts/PasswordQueue.h"

#include <algorithm>
#include <asio/experimental/as_tuple.hpp>
#include <asio/use_awaitable.hpp>
#include <cstdint>

namespace tavren::server {

PasswordQueue::Ticket::Ticket(Ticket&& other) noexcept
    : queue_(other.queue_), waiter_(std::move(other.waiter_)) {
    other.queue_ = nullptr;
}

PasswordQueue::Ticket::~Ticket() {
    if (queue_ && waiter_) {
        queue_->leave(waiter_);
    }
}

PasswordQueue::PasswordQueue(asio::any_io_executor executor, std::size_t maxPerGroup,
                             std::size_t maxInAll, std::size_t running)
    : executor_(std::move(executor)),
      maxPerGroup_(maxPerGroup),
      maxInAll_(maxInAll),
      runningAtOnce_(std::max<std::size_t>(1, running)) {}

std::optional<PasswordQueue::Ticket> PasswordQueue::enter(const std::string& group) {
    const auto count = perGroup_.find(group);
    if (inAll_ >= maxInAll_ || (count != perGroup_.end() && count->second >= maxPerGroup_)) {
        return std::nullopt;
    }
    ++perGroup_[group];
    ++inAll_;
    return Ticket(this, std::make_shared<Waiter>(executor_, group));
}

asio::awaitable<void> PasswordQueue::waitTurn(Ticket& ticket) {
    const std::shared_ptr<Waiter> waiter = ticket.waiter_;
    if (released_ || (running_ < runningAtOnce_ && turns_.empty())) {
        waiter->granted = true;
        ++running_;
        co_return;
    }
    auto& line = queued_[waiter->group];
    if (line.empty()) {
        turns_.push_back(waiter->group);
    }
    line.push_back(waiter);
    waiter->queued = true;
    waiter->turn.expires_at(asio::steady_timer::time_point::max());
    while (!waiter->granted) {
        co_await waiter->turn.async_wait(asio::experimental::as_tuple(asio::use_awaitable));
    }
}

void PasswordQueue::releaseAll() {
    released_ = true;
    runningAtOnce_ = SIZE_MAX;
    grantNext();
}

void PasswordQueue::grantNext() {
    while (running_ < runningAtOnce_ && !turns_.empty()) {
        const std::string group = turns_.front();
        turns_.pop_front();
        auto& line = queued_[group];
        const std::shared_ptr<Waiter> next = line.front();
        line.pop_front();
        if (line.empty()) {
            queued_.erase(group);
        } else {
            turns_.push_back(group);  // the group's next check waits for every other group
        }
        next->queued = false;
        next->granted = true;
        ++running_;
        next->turn.cancel();
    }
}

void PasswordQueue::leave(const std::shared_ptr<Waiter>& waiter) {
    if (waiter->granted) {
        --running_;
    } else if (waiter->queued) {
        auto line = queued_.find(waiter->group);
        if (line != queued_.end()) {
            std::erase(line->second, waiter);
            if (line->second.empty()) {
                queued_.erase(line);
                turns_.remove(waiter->group);
            }
        }
    }
    if (auto count = perGroup_.find(waiter->group);
        count != perGroup_.end() && --count->second == 0) {
        perGroup_.erase(count);
    }
    --inAll_;
    grantNext();
}

}  // namespace tavren::server
