#pragma once

#include <QString>

namespace tavren {

class RoomCommandHost;
class RoomSession;
class ServerLink;

// Carries out what a member typed into a channel: the client's own slash commands here, every
// other line to the server through the room session.
class RoomCommands {
  public:
    RoomCommands(RoomSession& rooms, ServerLink& link, RoomCommandHost& host);

    // Returns false when the input must stay in the box (a "/weather " that is not followed
    // by a postal code, a line the flood meter held back); the box is emptied otherwise.
    bool submit(int room, const QString& input);

  private:
    RoomSession& rooms_;
    ServerLink& link_;
    RoomCommandHost& host_;
};

}  // namespace tavren
