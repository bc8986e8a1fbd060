#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "server/accounts/Account.h"
#include "server/rooms/ModerationRights.h"
#include "server/rooms/RoomCommand.h"

namespace tavren::server {

class AccountStore;
class OnlineMembers;
class RoomService;
class Sanctions;
struct ActiveChannel;
struct Member;

// The moderation commands typed in a channel: "/kick", "/chanban", "/ban", "/suspend",
// "/subban", their lifting "/unban", "/unsuspend", the ban list "/ipbans", and "/referal". Rights
// are those of ModerationRights. Every answer is a "**ChanHost" line: what was done goes to
// everyone in the channel, refusals and lists to the one who asked. Whoever is removed from a
// channel gets (2, 20) with the reason; a suspended member, and everyone but staff from a banned
// range, gets a notice and is logged out.
class ModerationCommands {
  public:
    // Reasons are kept and shown to others, so they are cut to this many bytes.
    static constexpr std::size_t kMaxReason = 200;
    // Entries of each list that "/ipbans" shows.
    static constexpr std::size_t kListedBans = 50;

    ModerationCommands(RoomService& rooms, AccountStore& accounts, Sanctions& sanctions,
                       OnlineMembers& online)
        : rooms_(rooms), accounts_(accounts), sanctions_(sanctions), online_(online) {}

    void run(RoomCommand::Kind kind, Member& member, ActiveChannel& channel,
             const std::string& argument);

  private:
    struct Target {
        Account account;
        std::string reason;
    };

    void kick(Member& member, ActiveChannel& channel, const Target& target);
    void channelBan(Member& member, ActiveChannel& channel, const Target& target);
    void accountBan(Member& member, ActiveChannel& channel, const Target& target);
    void suspend(Member& member, ActiveChannel& channel, const Target& target);
    void subnetBan(Member& member, ActiveChannel& channel, const Target& target);
    void unban(Member& member, ActiveChannel& channel, const std::string& argument);
    void unsuspend(Member& member, ActiveChannel& channel, const std::string& argument);
    void listBans(Member& member, ActiveChannel& channel);
    void referral(Member& member, ActiveChannel& channel, const std::string& argument);

    // The member named by "NAME:REASON" when the sender may act on them, else nothing after
    // telling the sender why not. `word` names the command in the answers ("kick").
    std::optional<Target> target(Member& member, ActiveChannel& channel,
                                 const std::string& argument, ModerationAction action,
                                 std::string_view word);
    std::optional<Account> account(Member& member, ActiveChannel& channel, const std::string& name,
                                   std::string_view word);
    static Standing standingOf(const Account& account, const ActiveChannel& channel,
                               ModerationAction action);

    RoomService& rooms_;
    AccountStore& accounts_;
    Sanctions& sanctions_;
    OnlineMembers& online_;
};

}  // namespace tavren::server
