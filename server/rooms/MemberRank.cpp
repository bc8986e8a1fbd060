#include "server/rooms/MemberRank.h"

#include <algorithm>

#include "server/base/AsciiText.h"

namespace tavren::server {

MemberRank RankOf(int staffLevel, bool hostsTheChannel) {
    switch (staffLevel) {
        case 3:
            return MemberRank::kStaff3;
        case 2:
            return MemberRank::kStaff2;
        case 1:
            return MemberRank::kStaff1;
        default:
            return hostsTheChannel ? MemberRank::kHost : MemberRank::kMember;
    }
}

std::string_view RankMark(MemberRank rank) {
    switch (rank) {
        case MemberRank::kStaff3:
            return "@\xB3";
        case MemberRank::kStaff2:
            return "@\xB2";
        case MemberRank::kStaff1:
            return "@\xB9";
        case MemberRank::kHost:
            return "@";
        case MemberRank::kMember:
            break;
    }
    return "";
}

std::string MemberListPayload(std::string_view channel, std::vector<ListedMember>& members) {
    std::sort(members.begin(), members.end(), [](const ListedMember& a, const ListedMember& b) {
        if (a.rank != b.rank) {
            return a.rank < b.rank;
        }
        // Names are ASCII, so this orders them as a reader would. It runs for every list of a
        // crowded channel, so it compares in place rather than making lower-case copies.
        if (AsciiText::lessNoCase(a.name, b.name)) {
            return true;
        }
        return !AsciiText::lessNoCase(b.name, a.name) && a.name < b.name;
    });
    std::string payload(channel);
    payload += ':';
    for (const ListedMember& member : members) {
        payload += RankMark(member.rank);
        payload += member.name;
        payload += ';';
    }
    return payload;
}

}  // namespace tavren::server
