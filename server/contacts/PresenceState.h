#pragma once

#include <string>
#include <string_view>

namespace tavren::server {

// What a member's watchers are told about the member: the presence record (2, 13), seven fields
// separated by ";":
//
//   folder "." name ; online ; away ; in channel ; idle ; channel ; away text
//
// The flags are "True"/"False"; the channel is the first one the member is in (join order),
// empty when none; the away text is what the member went away with, and the record's last field,
// so it may hold ";". A record never holds ":", which is how the client tells it from a whole
// list: a ":" in the away text goes out as ".". An offline member is "False" in every flag, with
// both texts empty, whatever the state held before.
struct PresenceState {
    bool online = false;
    bool away = false;
    bool idle = false;
    std::string channel;
    std::string awayText;

    // The record as the watcher who filed the member under `folder` sees it.
    std::string recordFor(std::string_view folder, std::string_view name) const;

    friend bool operator==(const PresenceState&, const PresenceState&) = default;
};

}  // namespace tavren::server
