#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tavren::server {

// Where a member stands in a channel, in the order member lists are sent: the three staff ranks
// from the highest, then the channel's host, then everyone else. A staff member who hosts the
// channel shows the staff rank.
enum class MemberRank { kStaff3, kStaff2, kStaff1, kHost, kMember };

MemberRank RankOf(int staffLevel, bool hostsTheChannel);
// The mark in front of the name: "@³", "@²", "@¹" (Windows-1252 bytes 0xB3, 0xB2, 0xB9), "@", or
// nothing.
std::string_view RankMark(MemberRank rank);

struct ListedMember {
    std::string name;
    MemberRank rank = MemberRank::kMember;
};

// The member list (2, 5): channel ":" then each name with its mark and a ";" after it, in rank
// order and, within a rank, by name without regard to case. `members` is sorted in place.
std::string MemberListPayload(std::string_view channel, std::vector<ListedMember>& members);

}  // namespace tavren::server
