#pragma once

namespace tavren {

// The windows a text command can open, provided by the window layer so that the commands
// themselves run headless.
class RoomCommandHost {
  public:
    virtual ~RoomCommandHost() = default;
    virtual void openSettings() = 0;
    virtual void openNicknameFormat() = 0;
    virtual void openAbout() = 0;
    // "/editprofile". Hosts without windows open nothing.
    virtual void openProfileEditor() {}
    // The channel windows: the directory ("/findchan", which asks the server for the list
    // itself), the creation form and the invitation sender. Hosts without windows open nothing.
    virtual void openChannelDirectory() {}
    virtual void openChannelCreation() {}
    virtual void openInviteSender() {}
    // Closes the room window as its close command does (every channel is left).
    virtual void closeRoomWindow() = 0;
};

}  // namespace tavren
