#pragma once

#include <string>
#include <vector>

#include "server/base/ServerConfig.h"
#include "server/contacts/MemberDirectory.h"
#include "server/session/FeatureHandler.h"

namespace tavren::server {

class PresenceHub;
class RoomService;

// Member search: (6, 1) field U+0001 text, answered with one record per member found, at most
// the configured number; (6, 1) when that is every member found, (6, 2) when more matched than
// were sent. A field or text the search does not take answers no record.
//
// Fields: "Name" (the start of a name), "Email" (a whole address) and "Profile" (any text of
// the page), letter case ignored everywhere. Each record: name, "Online"/"Offline", the first
// channel the member is in, the day the account was made (yyyy-mm-dd, UTC), "Yes"/"No" for a
// profile page of the member's own, and the page's first web address.
class SearchRequests : public FeatureHandler {
  public:
    SearchRequests(MemberDirectory& directory, PresenceHub& hub, const RoomService& rooms,
                   const DirectoryLimits& limits)
        : directory_(directory), hub_(hub), rooms_(rooms), limits_(limits) {}

    std::vector<protocol::CodePair> requests() const override;
    asio::awaitable<void> handle(Member& member, protocol::CodePair code,
                                 std::string payload) override;

  private:
    std::vector<MemberCard> find(std::string_view field, std::string_view text, std::size_t limit);
    std::vector<std::string> record(const MemberCard& card) const;

    MemberDirectory& directory_;
    PresenceHub& hub_;
    const RoomService& rooms_;
    const DirectoryLimits& limits_;
};

}  // namespace tavren::server
