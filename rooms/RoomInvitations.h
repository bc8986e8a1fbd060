#pragma once

#include <QObject>
#include <QString>
#include <optional>

#include "core/ServerMessage.h"

namespace tavren {

class IgnoreList;
class Prompter;
class RoomSession;
class ServerSession;

// An invitation to a channel as the server relays it: (2, 3) "Invite: " inviter ";" channel.
struct RoomInvitation {
    QString inviter;
    QString channel;

    static std::optional<RoomInvitation> parse(const QString& payload);
    // What the invitation prompt says; it begins with "Invite: ".
    QString text() const;
};

// Invitations both ways. Sending (2, 3) user ";" channel from the main menu's invite window,
// with its refusals and its success box (shown as soon as the request is sent: the server's
// refusals come as notices of their own); receiving (2, 3), dropped when the inviter is ignored;
// accepting, which joins unless the channel is open already.
class RoomInvitations : public QObject {
    Q_OBJECT
  public:
    RoomInvitations(ServerSession& server, RoomSession& rooms, IgnoreList& ignoreList,
                    QObject* parent = nullptr);

    // The invite window's button: false, after saying why, when nothing was sent.
    bool invite(const QString& user, const QString& channel, Prompter& prompter);
    // Before the window opens: false, after saying so, when the member is in no channel.
    bool canInvite(Prompter& prompter) const;
    bool accept(const RoomInvitation& invitation);

    void onInvitation(const ServerMessage& message);

  signals:
    void invited(const RoomInvitation& invitation);

  private:
    ServerSession& server_;
    RoomSession& rooms_;
    IgnoreList& ignoreList_;
};

}  // namespace tavren
