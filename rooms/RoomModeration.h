#pragma once

#include <QString>
#include <optional>

namespace tavren {

class Prompter;
class RoomSession;

// The room window's moderation items. The client decides nothing about rights: each item asks
// what it needs (a reason, a confirmation, a question), composes a server command and sends it as
// a line of the selected channel; the server checks the rank and answers in the channel.
//
// Member menu: kick, chanban, mban (ban from every channel), subnetban and suspendacc act on the
// member the menu was opened on; info and referal ask the server about them. Room menu: mlistban
// (the ban list), voter (start a vote), voteyes and voteno.
class RoomModeration {
  public:
    RoomModeration(RoomSession& rooms, Prompter& prompter) : rooms_(rooms), prompter_(prompter) {}

    // False when the item is not one of the member menu's, or the answer sent nothing.
    bool onMemberItem(const QString& item, const QString& name);
    bool onRoomItem(const QString& item);

    // The command an input-box item sends for what was answered: the answer trimmed, nothing for
    // an empty answer (Cancel answers empty). The reason may itself hold ":".
    static std::optional<QString> command(const QString& item, const QString& name,
                                          const std::optional<QString>& answer);

  private:
    bool send(const QString& command);

    RoomSession& rooms_;
    Prompter& prompter_;
};

}  // namespace tavren
