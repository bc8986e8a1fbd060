#pragma once

#include <QDialog>

#include "rooms/RoomInvitations.h"

class QLabel;

namespace tavren {

// The prompt an invitation opens: what it says ("Invite: alice invites you to join the channel
// Poker Lounge.") and a button that joins the channel, unless it is open already. It opens
// without taking the keyboard from what the member is typing, and without holding up anything.
class ChatInvite : public QDialog {
    Q_OBJECT
  public:
    ChatInvite(RoomInvitations& invitations, const RoomInvitation& invitation,
               QWidget* parent = nullptr);

    const RoomInvitation& invitation() const { return invitation_; }
    QString text() const;
    // The join button.
    void accept() override;

  private:
    RoomInvitations& invitations_;
    RoomInvitation invitation_;
    QLabel* text_ = nullptr;
};

}  // namespace tavren
