#pragma once

#include <QString>

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
    // "/weather " + postal code and "/radio": look up and show the answer in `channel`.
    // "/news": the news window. Hosts without web services do nothing.
    virtual void lookUpWeather(const QString& channel, const QString& postalCode) {
        static_cast<void>(channel);
        static_cast<void>(postalCode);
    }
    virtual void lookUpRadio(const QString& channel) { static_cast<void>(channel); }
    virtual void openNews() {}
    // Closes the room window as its close command does (every channel is left).
    virtual void closeRoomWindow() = 0;
};

}  // namespace tavren
