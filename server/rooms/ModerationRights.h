#pragma once

#include <string_view>

namespace tavren::server {

// Where a member stands in one channel when moderating: the account's staff level and whether the
// member hosts that channel.
struct Standing {
    int staffLevel = 0;
    bool hostsChannel = false;

    // 0 member, 1 channel host, 2..4 staff levels 1..3.
    int rank() const;
};

// What moderation may do. Lifting a ban or a suspension needs the right to impose it.
enum class ModerationAction {
    kKick,        // out of this channel
    kChannelBan,  // out of this channel, and kept out
    kAccountBan,  // out of every channel, and kept out
    kSuspend,     // the account cannot log in
    kSubnetBan,   // nobody but staff logs in from the member's address range
    kListBans,    // this channel's bans (staff also see the server's)
};

// Who may do what. The server decides alone; the client sends whatever the member picked.
//
// | action                        | member | host (own channel) | staff 1 | staff 2 | staff 3 |
// |-------------------------------|--------|--------------------|---------|---------|---------|
// | kick, channel ban, their list | -      | yes                | yes     | yes     | yes     |
// | account ban, suspension       | -      | -                  | -       | yes     | yes     |
// | subnet ban                    | -      | -                  | -       | -       | yes     |
//
// Whoever acts may act only on members who rank below them (staff 3, 2, 1, host, member), never
// on themselves: a host cannot kick staff, staff 1 cannot kick staff 1 or 2.
class ModerationRights {
  public:
    static bool may(ModerationAction action, const Standing& actor);
    static bool outranks(const Standing& actor, const Standing& target);
    // The line a member without the right gets.
    static std::string_view refusal(ModerationAction action);
};

}  // namespace tavren::server
