#include "server/rooms/Sanctions.h"

#include <algorithm>

#include "server/accounts/Account.h"
#include "server/rooms/AddressRange.h"

namespace tavren::server {

Sanctions::Sanctions(ModerationStore& store) : store_(store), ranges_(store.rangeBans()) {}

std::optional<std::string> Sanctions::bannedRangeOf(std::string_view peerAddress) const {
    if (ranges_.empty()) {
        return std::nullopt;
    }
    const auto range = AddressRange::ofPeer(peerAddress);
    if (!range) {
        return std::nullopt;
    }
    const bool banned = std::any_of(ranges_.begin(), ranges_.end(), [&](const ListedSanction& ban) {
        return ban.target == *range;
    });
    return banned ? range : std::nullopt;
}

void Sanctions::banRange(const std::string& range, const std::string& member,
                         const Sanction& sanction) {
    store_.setRangeBan(range, member, sanction);
    std::erase_if(ranges_, [&](const ListedSanction& ban) { return ban.target == range; });
    ranges_.push_back({range, member, sanction});
}

bool Sanctions::liftRange(const std::string& range) {
    std::erase_if(ranges_, [&](const ListedSanction& ban) { return ban.target == range; });
    return store_.liftRangeBan(range);
}

std::string Sanctions::loginRefusal(const Account& account, std::string_view peerAddress) {
    if (store_.suspension(account.id)) {
        return "Your account is suspended, so you cannot log in. Ask the staff of this server if "
               "you think this is a mistake.";
    }
    if (account.staffLevel == 0 && bannedRangeOf(peerAddress)) {
        return "Logins from your address are banned on this server.";
    }
    return {};
}

std::string Sanctions::signUpRefusal(std::string_view peerAddress) {
    if (bannedRangeOf(peerAddress)) {
        return "Sign-ups from your address are banned on this server.";
    }
    return {};
}

}  // namespace tavren::server
