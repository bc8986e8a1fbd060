#include "server/net/AddressLimiter.h"

namespace tavren::server {

AddressLimiter::Slot::Slot(std::shared_ptr<Counts> counts, std::string address)
    : counts_(std::move(counts)), address_(std::move(address)) {
    ++(*counts_)[address_];
}

AddressLimiter::Slot::~Slot() {
    if (!counts_) {
        return;  // moved from
    }
    const auto entry = counts_->find(address_);
    if (entry != counts_->end() && --entry->second <= 0) {
        counts_->erase(entry);
    }
}

std::optional<AddressLimiter::Slot> AddressLimiter::tryAcquire(const std::string& address) {
    if (openFrom(address) >= maxPerAddress_) {
        return std::nullopt;
    }
    return Slot(counts_, address);
}

int AddressLimiter::openFrom(const std::string& address) const {
    const auto entry = counts_->find(address);
    return entry == counts_->end() ? 0 : entry->second;
}

}  // namespace tavren::server
