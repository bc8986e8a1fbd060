#pragma once

#include <cstdint>
#include <string>

namespace tavren::server {

// One channel as the store keeps it, whether anybody is in it or not.
struct Channel {
    std::int64_t id = 0;
    std::string name;  // spelled as created; compared without regard to case
    std::string topic;
    std::int64_t hostId = 0;  // the account that created it; 0 for official channels
    bool official = false;
    std::int64_t createdAt = 0;   // seconds since the Unix epoch
    std::int64_t lastUsedAt = 0;  // when it was created or last emptied
    std::string passwordHash;     // empty for a channel anybody may enter
};

}  // namespace tavren::server
