#include "server/rooms/OnlineMembers.h"

#include <vector>

#include "server/base/AsciiText.h"
#include "server/session/Member.h"

namespace tavren::server {

void OnlineMembers::memberArrived(Member& member) {
    members_[AsciiText::lower(member.name())] = &member;
}

void OnlineMembers::memberLeft(Member& member) {
    const auto found = members_.find(AsciiText::lower(member.name()));
    if (found != members_.end() && found->second == &member) {
        members_.erase(found);
    }
}

Member* OnlineMembers::find(std::string_view name) const {
    const auto found = members_.find(AsciiText::lower(name));
    return found == members_.end() ? nullptr : found->second;
}

void OnlineMembers::forEach(const std::function<void(Member&)>& visit) const {
    // A visit may end a session, which must not disturb the walk.
    std::vector<Member*> all;
    all.reserve(members_.size());
    for (const auto& [key, member] : members_) {
        all.push_back(member);
    }
    for (Member* member : all) {
        visit(*member);
    }
}

}  // namespace tavren::server
