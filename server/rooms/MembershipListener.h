#pragma once

#include <cstdint>
#include <string>

namespace tavren::server {

// Told when the first channel a member is in (join order) changes, which is what others see of
// a member's channels in its presence: joining the first channel, leaving it, and leaving the
// last. The channel is spelled as created, empty when the member is in none.
class MembershipListener {
  public:
    virtual ~MembershipListener() = default;

    virtual void firstChannelChanged(const std::string& memberName, std::uint64_t sessionId,
                                     const std::string& channel) = 0;
};

}  // namespace tavren::server
