#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>

namespace tavren::server {

// Counts open connections per remote address. A connection holds a Slot for its whole life; the
// slot gives its place back when destroyed, whichever way the connection ended.
class AddressLimiter {
    using Counts = std::map<std::string, int>;

  public:
    class Slot {
      public:
        Slot(std::shared_ptr<Counts> counts, std::string address);
        ~Slot();
        Slot(Slot&& other) noexcept = default;
        Slot& operator=(Slot&&) = delete;
        Slot(const Slot&) = delete;
        Slot& operator=(const Slot&) = delete;

      private:
        std::shared_ptr<Counts> counts_;
        std::string address_;
    };

    explicit AddressLimiter(int maxPerAddress)
        : maxPerAddress_(maxPerAddress), counts_(std::make_shared<Counts>()) {}

    // A slot, or nothing when the address already holds the most connections allowed.
    std::optional<Slot> tryAcquire(const std::string& address);
    int openFrom(const std::string& address) const;

  private:
    int maxPerAddress_;
    std::shared_ptr<Counts> counts_;
};

}  // namespace tavren::server
