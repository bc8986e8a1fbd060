#include "server/rooms/ModerationRights.h"

namespace tavren::server {

int Standing::rank() const {
    if (staffLevel > 0) {
        return 1 + staffLevel;
    }
    return hostsChannel ? 1 : 0;
}

bool ModerationRights::may(ModerationAction action, const Standing& actor) {
    switch (action) {
        case ModerationAction::kKick:
        case ModerationAction::kChannelBan:
        case ModerationAction::kListBans:
            return actor.hostsChannel || actor.staffLevel >= 1;
        case ModerationAction::kAccountBan:
        case ModerationAction::kSuspend:
            return actor.staffLevel >= 2;
        case ModerationAction::kSubnetBan:
            return actor.staffLevel >= 3;
    }
    return false;
}

bool ModerationRights::outranks(const Standing& actor, const Standing& target) {
    return actor.rank() > target.rank();
}

std::string_view ModerationRights::refusal(ModerationAction action) {
    switch (action) {
        case ModerationAction::kKick:
            return "Only the channel host or staff can kick members.";
        case ModerationAction::kChannelBan:
            return "Only the channel host or staff can ban members from this channel.";
        case ModerationAction::kListBans:
            return "Only the channel host or staff can see the bans.";
        case ModerationAction::kAccountBan:
            return "Only staff of level 2 or 3 can ban members from every channel.";
        case ModerationAction::kSuspend:
            return "Only staff of level 2 or 3 can suspend accounts.";
        case ModerationAction::kSubnetBan:
            return "Only staff of level 3 can ban address ranges.";
    }
    return "You cannot do that.";
}

}  // namespace tavren::server
