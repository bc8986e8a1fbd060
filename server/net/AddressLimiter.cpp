#include "server/net/AddressLimiter.h"

namespace tavren::server {

AddressLimiter::Slot::Slot(std::shared_ptr<Counts> counts, std::string group)
    : counts_(std::move(counts)), group_(std::move(group)) {
    ++counts_->perGroup[group_];
    ++counts_->total;
}

AddressLimiter::Slot::~Slot() {
    if (!counts_) {
        return;  // moved from
    }
    --counts_->total;
    const auto entry = counts_->perGroup.find(group_);
    if (entry != counts_->perGroup.end() && --entry->second <= 0) {
        counts_->perGroup.erase(entry);
    }
}

std::optional<AddressLimiter::Slot> AddressLimiter::tryAcquire(const std::string& group,
                                                               Refusal* why) {
    Refusal refusal = Refusal::kNone;
    if (counts_->total >= maxTotal_) {
        refusal = Refusal::kServerFull;
    } else if (openFrom(group) >= maxPerGroup_) {
        refusal = Refusal::kGroupFull;
    }
    if (why) {
        *why = refusal;
    }
    if (refusal != Refusal::kNone) {
        return std::nullopt;
    }
    return Slot(counts_, group);
}

int AddressLimiter::openFrom(const std::string& group) const {
    const auto entry = counts_->perGroup.find(group);
    return entry == counts_->perGroup.end() ? 0 : entry->second;
}

}  // namespace tavren::server
