#pragma once

#include <string>
#include <string_view>

namespace tavren::server {

class ChannelInvitations;
class Sanctions;
struct Channel;
struct Member;

// Who gets into a channel. A member banned from every channel gets into none (nor creates one); a
// member banned from a channel does not get into it; a protected channel lets in its host, staff
// and invited members as they are, everyone else with its password. An invitation is used up by
// the join it allows, and the first invitation a member ever accepts makes the inviter the
// member's referrer.
class ChannelGate {
  public:
    struct Verdict {
        enum class Kind { kEnter, kRefuse, kAskPassword };
        Kind kind = Kind::kEnter;
        std::string why;  // kRefuse: follows "You cannot join "NAME": "; kAskPassword: a sentence
    };

    ChannelGate(Sanctions& sanctions, ChannelInvitations& invitations)
        : sanctions_(sanctions), invitations_(invitations) {}

    // Empty, or why the member may join no channel at all.
    std::string refusalEverywhere(const Member& member);
    // A password attempt costs the member a line of the line meter.
    Verdict mayEnter(Member& member, const Channel& channel, std::string_view password);
    void entered(const Member& member, const Channel& channel);

  private:
    Sanctions& sanctions_;
    ChannelInvitations& invitations_;
};

}  // namespace tavren::server
