#include "rooms/RoomCommands.h"

#include "core/ServerLink.h"
#include "core/protocol/Catalogue.h"
#include "rooms/RoomCommandHost.h"
#include "rooms/RoomInput.h"
#include "rooms/RoomSession.h"

namespace tavren {

namespace out = protocol::client_to_server;

namespace {
constexpr WinColor kNoticeNameColor = 128;  // dark red, as the channel host's name
constexpr WinColor kNoticeTextColor = 0x404040;
}  // namespace

RoomCommands::RoomCommands(RoomSession& rooms, ServerLink& link, RoomCommandHost& host)
    : rooms_(rooms), link_(link), host_(host) {}

bool RoomCommands::submit(int room, const QString& input) {
    const RoomInput command = RoomInput::classify(input);
    const QString channel = room >= 0 && room < rooms_.count() ? rooms_.room(room).name : QString();
    using Kind = RoomInput::Kind;
    switch (command.kind) {
        case Kind::Nothing:
            return true;
        case Kind::KeepTyping:
            return false;
        case Kind::Join:
            rooms_.join(command.argument);
            return true;
        case Kind::Invite:
            link_.SendPacket(command.argument + QLatin1Char(';') + channel, out::kInviteToRoom);
            rooms_.showLine(room, QStringLiteral("Console: "),
                            QStringLiteral("\u2022 Invited <b>") + command.argument +
                                QStringLiteral("</b> to <b>") + channel + QStringLiteral("</b>"),
                            kNoticeNameColor, kNoticeTextColor);
            return true;
        case Kind::Weather:
            host_.lookUpWeather(channel, command.argument);
            return true;
        case Kind::Radio:
            host_.lookUpRadio(channel);
            return true;
        case Kind::EditProfile:
            host_.openProfileEditor();
            return true;
        case Kind::News:
            host_.openNews();
            return true;
        case Kind::FindChannels:
            rooms_.directory().request();
            host_.openChannelDirectory();
            return true;
        case Kind::Config:
            host_.openSettings();
            return true;
        case Kind::Format:
            host_.openNicknameFormat();
            return true;
        case Kind::About:
            host_.openAbout();
            return true;
        case Kind::Clear:
            rooms_.clearPane(room);
            return true;
        case Kind::Exit:
            host_.closeRoomWindow();
            return true;
        case Kind::Leave:
            rooms_.leave(room);
            return true;
        case Kind::ChannelLine:
            return rooms_.sendLine(room, command.argument);
    }
    return true;
}

}  // namespace tavren
