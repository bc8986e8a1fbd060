#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "server/rooms/Channel.h"

namespace tavren::server {

// Where channels live between the times anybody is in them. Like the account store it is an
// interface, so a shared database can take the embedded one's place; implementations throw
// StorageError when the storage itself fails. Names are compared without regard to case.
class ChannelStore {
  public:
    virtual ~ChannelStore() = default;

    virtual std::optional<Channel> findByName(std::string_view name) = 0;
    // Adds the channel and assigns its id. Returns false, and changes nothing, when the name is
    // taken in any spelling.
    virtual bool create(Channel& channel) = 0;
    virtual void setTopic(std::int64_t channelId, const std::string& topic) = 0;
    // An empty hash takes the password away.
    virtual void setPasswordHash(std::int64_t channelId, const std::string& passwordHash) = 0;
    virtual void setLastUsed(std::int64_t channelId, std::int64_t when) = 0;
    virtual std::size_t countHostedBy(std::int64_t accountId) = 0;
    virtual std::size_t count() = 0;
    // Up to `limit` channels, official ones first, each group by name.
    virtual std::vector<Channel> list(std::size_t limit) = 0;
    // Member channels last used before `cutoff`; official channels never expire.
    virtual std::vector<Channel> unusedSince(std::int64_t cutoff) = 0;
    virtual void remove(std::int64_t channelId) = 0;
    // Exactly these channels are official from now on: missing ones are created, and channels
    // that were official before but are not named any more become member channels.
    virtual void setOfficial(const std::vector<std::string>& names, std::int64_t now) = 0;
};

}  // namespace tavren::server
