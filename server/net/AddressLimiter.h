#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

namespace tavren::server {

// Counts open connections per address group and in all. A connection holds a Slot for its whole
// life; the slot gives its place back when destroyed, whichever way the connection ended.
class AddressLimiter {
    struct Counts {
        std::unordered_map<std::string, int> perGroup;
        std::size_t total = 0;
    };

  public:
    class Slot {
      public:
        Slot(std::shared_ptr<Counts> counts, std::string group);
        ~Slot();
        Slot(Slot&& other) noexcept = default;
        Slot& operator=(Slot&&) = delete;
        Slot(const Slot&) = delete;
        Slot& operator=(const Slot&) = delete;

      private:
        std::shared_ptr<Counts> counts_;
        std::string group_;
    };

    explicit AddressLimiter(int maxPerGroup, std::size_t maxTotal = SIZE_MAX)
        : maxPerGroup_(maxPerGroup), maxTotal_(maxTotal), counts_(std::make_shared<Counts>()) {}

    enum class Refusal { kNone, kGroupFull, kServerFull };
    // A slot, or nothing (and why) when the group or the server already holds the most
    // connections allowed.
    std::optional<Slot> tryAcquire(const std::string& group, Refusal* why = nullptr);
    int openFrom(const std::string& group) const;
    std::size_t openInAll() const { return counts_->total; }
    void setMaxTotal(std::size_t maxTotal) { maxTotal_ = maxTotal; }

  private:
    int maxPerGroup_;
    std::size_t maxTotal_;
    std::shared_ptr<Counts> counts_;
};

}  // namespace tavren::server
