#pragma once

#include <QDialog>

class QComboBox;
class QLineEdit;

namespace tavren {

class Prompter;
class RoomInvitations;
class RoomSession;

// The invitation sender of the main menu: a member's name and one of the member's own channels.
// The request goes out with the button, and the success box with it, without waiting for the
// server (whose refusals arrive as notices).
class ChatSendInvite : public QDialog {
    Q_OBJECT
  public:
    ChatSendInvite(RoomSession& rooms, Prompter& prompter, QWidget* parent = nullptr);

    // Offers the channels open now, the room window's current one first chosen, and puts the
    // name (which may be empty) into the name field.
    void prepare(const QString& user);
    QLineEdit& userField() { return *user_; }
    QComboBox& channelChoice() { return *channel_; }
    // The invite button.
    void accept() override;

  private:
    RoomSession& rooms_;
    Prompter& prompter_;
    QLineEdit* user_ = nullptr;
    QComboBox* channel_ = nullptr;
};

}  // namespace tavren
