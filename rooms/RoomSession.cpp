#include "rooms/RoomSession.h"

#include <QSet>
#include <algorithm>

#include "config/Settings.h"
#include "config/SoundPlayer.h"
#include "config/SoundSlots.h"
#include "contacts/IgnoreList.h"
#include "contacts/PerformList.h"
#include "core/ServerSession.h"
#include "core/protocol/Catalogue.h"
#include "render/ChatLineFormatter.h"
#include "render/FormatLines.h"
#include "render/NicknameFormat.h"
#include "render/RankMarks.h"
#include "render/TextStyle.h"
#include "rooms/ChannelLine.h"
#include "rooms/MemberListUpdate.h"

namespace tavren {

namespace in = protocol::server_to_client;
namespace out = protocol::client_to_server;

namespace {

const QString kServerLabel = QStringLiteral("Server:");
const QString kChanHostLabel = QStringLiteral("ChanHost:");
const QString kMembershipLabel = QStringLiteral("***");
constexpr WinColor kMembershipColor = 0x808080;
// Until the server says otherwise: ten lines in hand, one back every second.
constexpr int kDefaultFloodMaximum = 10;
constexpr int kDefaultDrainMs = 1000;
// A busy channel would otherwise chime with every line.
constexpr qint64 kLineSoundGapMs = 3000;
// More joins and leaves than this in one list (a server restart, everybody rejoining) make one
// summary line instead of a line each.
constexpr int kMembershipLinesMax = 8;

QString strippedLower(const QString& listedName) {
    return StripRankMarks(listedName).toLower();
}

}  // namespace

RoomSession::RoomSession(ServerSession& server, Settings& settings, SoundPlayer& sounds,
                         IgnoreList& ignoreList, PerformList& performList,
                         const ChatLineFormatter& formatter, QObject* parent)
    : QObject(parent),
      server_(server),
      settings_(settings),
      sounds_(sounds),
      ignoreList_(ignoreList),
      performList_(performList),
      formatter_(formatter),
      flooder_(kDefaultFloodMaximum),
      directory_(server, *this),
      invitations_(server, *this, ignoreList) {
    flooder_.setObjectName(QStringLiteral("Flooder"));
    drain_.setInterval(kDefaultDrainMs);
    connect(&drain_, &QTimer::timeout, this, [this] {
        if (flooder_.value() > 0) {
            flooder_.setValue(flooder_.value() - 1);
        }
    });
    drain_.start();

    ServerDispatcher& dispatcher = server_.dispatcher();
    using Message = const ServerMessage&;
    dispatcher.route(in::kJoinedRoom, [this](Message m) { onJoined(m); });
    dispatcher.route(in::kMemberList, [this](Message m) { onMemberList(m); });
    dispatcher.route(in::kChannelHostMessage, [this](Message m) { onChannelLine(m); });
    dispatcher.route(in::kRemovedFromRoom, [this](Message m) { onRemoved(m); });

    connect(&server_, &ServerSession::onlineChanged, this, &RoomSession::onLinkState);
    connect(&server_.login(), &LoginFlow::loginAccepted, this, &RoomSession::onLoginAccepted);
    connect(&server_, &ServerSession::sessionSettingsArrived, this,
            [this](const QString&, const QString& defaultRoom) { onSessionSettings(defaultRoom); });
    connect(&server_, &ServerSession::floodLimitsChanged, this, &RoomSession::onFloodLimits);
    connect(
        &server_.connection(), &ServerConnection::statusLine, this, [this](const QString& line) {
            const QString prefix = QStringLiteral("Server: ");
            showInEveryRoom(kServerLabel, line.startsWith(prefix) ? line.mid(prefix.size()) : line);
        });
}

RoomSession::~RoomSession() {
    if (meterRegistered_) {
        server_.floodMeters().remove(&flooder_);
    }
}

QString RoomSession::ownName() const {
    return server_.login().userName();
}

int RoomSession::roomIndex(const QString& channel) const {
    const QString wanted = channel.toLower();
    for (int i = 0; i < count(); ++i) {
        if (rooms_[static_cast<std::size_t>(i)].name.toLower() == wanted) {
            return i;
        }
    }
    return -1;
}

int RoomSession::paneIndex(int index) const {
    return room(index).paneIndex;
}

int RoomSession::indexOfPane(int pane) const {
    for (int i = 0; i < count(); ++i) {
        if (room(i).paneIndex == pane) {
            return i;
        }
    }
    return -1;
}

void RoomSession::AddChat(const QString& html, int pane) {
    emit lineAdded(pane, html);
}

bool RoomSession::isSelected(int index) const {
    return index == selected_;
}

void RoomSession::markUnread(int index) {
    Room& target = rooms_.at(static_cast<std::size_t>(index));
    if (!target.unread) {
        target.unread = true;
        emit unreadChanged(index);
    }
}

void RoomSession::select(int index) {
    if (index < 0 || index >= count()) {
        return;
    }
    Room& chosen = rooms_[static_cast<std::size_t>(index)];
    if (chosen.unread) {
        chosen.unread = false;
        emit unreadChanged(index);
    }
    if (index != selected_) {
        selected_ = index;
        emit selectionChanged(index);
    }
}

void RoomSession::join(const QString& channel) {
    if (roomIndex(channel) >= 0) {
        if (selected_ >= 0) {
            showLine(selected_, QStringLiteral("Error: Already located in channel.."),
                     QStringLiteral("You are already located in channel: ") + channel +
                         QStringLiteral("!"),
                     settings_.values().color(ColorScheme::HostNick),
                     settings_.values().color(ColorScheme::HostText));
        }
        return;
    }
    server_.link().SendPacket(channel, out::kJoinRoom);
}

bool RoomSession::joinListed(const QString& channel) {
    if (roomIndex(channel) >= 0) {
        if (selected_ >= 0) {
            showLine(selected_, QStringLiteral("Error: Already located in channel.."),
                     QStringLiteral("You are already located in: ") + channel + QStringLiteral("!"),
                     settings_.values().color(ColorScheme::HostNick),
                     settings_.values().color(ColorScheme::HostText));
        }
        return false;
    }
    server_.link().SendPacket(channel, out::kJoinRoom);
    return true;
}

void RoomSession::joinWithPassword(const QString& channel, const QString& password) {
    if (channel.isEmpty() || roomIndex(channel) >= 0) {
        return;
    }
    pendingPasswords_.insert(channel.toLower(), password);
    server_.link().SendPacket(channel + QLatin1Char(':') + password, out::kJoinRoom);
}

void RoomSession::leave(int index) {
    if (index < 0 || index >= count()) {
        return;
    }
    server_.link().SendPacket(room(index).name, out::kLeaveRoom);
    removeRoom(index);
}

void RoomSession::leaveAll() {
    if (count() == 0) {
        return;
    }
    if (server_.link().isConnected()) {
        server_.link().SendPacket(QStringLiteral("leaveall"), out::kRoomWindowRequest);
    }
    while (count() > 0) {
        removeRoom(count() - 1);
    }
}

bool RoomSession::sendLine(int index, const QString& text) {
    if (index < 0 || index >= count() || text.isEmpty()) {
        return true;
    }
    if (!server_.online()) {
        showLine(index, kServerLabel,
                 QStringLiteral("You are not connected: your line was not sent."),
                 settings_.values().color(ColorScheme::HostNick),
                 settings_.values().color(ColorScheme::HostText));
        return true;
    }
    if (flooder_.full()) {
        showLine(index, QStringLiteral("Flood Protection:"),
                 QStringLiteral("You are sending too fast. Wait a moment, then try again."),
                 settings_.values().color(ColorScheme::HostNick),
                 settings_.values().color(ColorScheme::HostText));
        return false;
    }
    server_.link().SendPacket(room(index).name + QLatin1Char(':') + text, out::kRoomLine);
    return true;
}

void RoomSession::clearPane(int index) {
    if (index >= 0 && index < count()) {
        emit paneCleared(room(index).paneIndex);
    }
}

RoomSession::IgnoreResult RoomSession::ignoreMember(int index, const QString& listedName) {
    const QString name = StripRankMarks(listedName);
    if (name.isEmpty()) {
        return IgnoreResult::NoName;
    }
    if (name.compare(ownName(), Qt::CaseInsensitive) == 0) {
        return IgnoreResult::Self;
    }
    if (!ignoreList_.add(name)) {
        return IgnoreResult::Already;
    }
    ignoreList_.save();
    if (index >= 0 && index < count()) {
        showLine(index, kServerLabel, QStringLiteral("Ignoring User..."),
                 settings_.values().color(ColorScheme::HostNick),
                 settings_.values().color(ColorScheme::HostText));
    }
    return IgnoreResult::Ignored;
}

void RoomSession::showLine(int index, const QString& label, const QString& text, WinColor nameColor,
                           WinColor textColor) {
    if (index < 0 || index >= count()) {
        return;
    }
    showFormatted(room(index).name, label, text, nameColor, textColor, false, kLineSize, false,
                  TextStyle{});
}

void RoomSession::showInEveryRoom(const QString& label, const QString& text) {
    for (int i = 0; i < count(); ++i) {
        showLine(i, label, text, settings_.values().color(ColorScheme::HostNick),
                 settings_.values().color(ColorScheme::HostText));
    }
}

void RoomSession::showFormatted(const QString& channel, const QString& label, QString text,
                                WinColor nameColor, WinColor textColor, bool boldText, int size,
                                bool highlight, const TextStyle& style) {
    FormatRoomLine(formatter_, *this, channel, label, text, nameColor, textColor, boldText, size,
                   highlight, style);
}

void RoomSession::onJoined(const ServerMessage& message) {
    // A channel name holds no ":"; a sentence after one is a protected channel asking for its
    // password instead of letting the member in.
    const int colon = message.payload.indexOf(QLatin1Char(':'));
    const QString name = colon < 0 ? message.payload : message.payload.left(colon);
    if (name.isEmpty() || name.contains(QLatin1Char(';'))) {
        return;
    }
    const QString password = pendingPasswords_.take(name.toLower());
    if (colon >= 0) {
        const int open = roomIndex(name);
        if (open >= 0) {
            // A rejoin whose saved password no longer works.
            rooms_[static_cast<std::size_t>(open)].password.clear();
        }
        emit passwordRequested(name, message.payload.mid(colon + 1));
        return;
    }
    const int existing = roomIndex(name);
    if (existing >= 0) {
        // Back in a channel whose tab stayed open (a rejoin): the tab keeps its lines.
        Room& again = rooms_[static_cast<std::size_t>(existing)];
        again.name = name;
        again.listed = false;
        return;
    }
    openRoom(name);
    if (!password.isEmpty()) {
        rooms_.back().password = password;
    }
}

void RoomSession::openRoom(const QString& name) {
    Room opened;
    opened.name = name;
    opened.paneIndex = nextPaneIndex_++;
    rooms_.push_back(opened);
    if (!meterRegistered_) {
        server_.floodMeters().add(&flooder_);
        meterRegistered_ = true;
    }
    const int index = count() - 1;
    emit roomOpened(index);
    select(index);
    showLine(index, kMembershipLabel, QStringLiteral("Now talking in ") + name + QLatin1Char('.'),
             kMembershipColor, kMembershipColor);
}

void RoomSession::removeRoom(int index) {
    const int pane = room(index).paneIndex;
    rooms_.erase(rooms_.begin() + index);
    // The tab that took the removed one's place is chosen, or the first when it was the last.
    const int next = count() == 0 ? -1 : (index < count() ? index : 0);
    selected_ = -1;
    emit roomRemoved(index, pane);
    if (next >= 0) {
        select(next);
    } else {
        emit selectionChanged(-1);
        if (meterRegistered_) {
            server_.floodMeters().remove(&flooder_);
            meterRegistered_ = false;
        }
    }
}

void RoomSession::onMemberList(const ServerMessage& message) {
    const auto update = MemberListUpdate::parse(message.payload);
    if (!update) {
        return;
    }
    const int index = roomIndex(update->channel);
    if (index < 0) {
        return;
    }
    Room& target = rooms_[static_cast<std::size_t>(index)];
    const QStringList before = target.members;
    const bool hadList = target.listed;
    target.members = update->names;
    target.listed = true;
    emit membersChanged(index);
    if (hadList) {
        noteMemberChanges(index, before, update->names);
    }
}

void RoomSession::noteMemberChanges(int index, const QStringList& before,
                                    const QStringList& after) {
    QSet<QString> old;
    for (const QString& name : before) {
        old.insert(strippedLower(name));
    }
    QSet<QString> now;
    QStringList joined;
    for (const QString& name : after) {
        now.insert(strippedLower(name));
        if (!old.contains(strippedLower(name))) {
            joined << StripRankMarks(name);
        }
    }
    QStringList left;
    for (const QString& name : before) {
        if (!now.contains(strippedLower(name))) {
            left << StripRankMarks(name);
        }
    }
    if (joined.size() + left.size() > kMembershipLinesMax) {
        showLine(index, kMembershipLabel,
                 QStringLiteral("%1 members joined, %2 left.").arg(joined.size()).arg(left.size()),
                 kMembershipColor, kMembershipColor);
        return;
    }
    for (const QString& name : joined) {
        showLine(index, kMembershipLabel, name + QStringLiteral(" has joined the channel."),
                 kMembershipColor, kMembershipColor);
    }
    for (const QString& name : left) {
        showLine(index, kMembershipLabel, name + QStringLiteral(" has left the channel."),
                 kMembershipColor, kMembershipColor);
    }
}

void RoomSession::onChannelLine(const ServerMessage& message) {
    const ChannelLine line = ChannelLine::parse(message.payload);
    if (roomIndex(line.channel) < 0) {
        return;
    }
    const SettingsValues& values = settings_.values();
    if (line.fromChanHost()) {
        playLineSound(true);
        showFormatted(line.channel, kChanHostLabel, line.text, values.color(ColorScheme::HostNick),
                      values.color(ColorScheme::HostText), false, kLineSize, true, TextStyle{});
        return;
    }
    const QString sender = StripRankMarks(line.sender);
    if (sender.isEmpty() || ignoreList_.contains(sender)) {
        return;
    }
    const QString label = line.sender + QLatin1Char(':');
    if (sender.compare(ownName(), Qt::CaseInsensitive) == 0) {
        showFormatted(line.channel, label, line.text, values.color(ColorScheme::OwnNick),
                      values.color(ColorScheme::OwnText), false, kLineSize, true, TextStyle{});
        return;
    }
    playLineSound(false);
    if (const auto format = NicknameFormat::parse(line.format)) {
        showFormatted(line.channel, label, line.text, format->nameColor, format->textColor,
                      format->bold, format->size, true, format->textStyle());
        return;
    }
    showFormatted(line.channel, label, line.text, values.color(ColorScheme::TheirNick),
                  values.color(ColorScheme::TheirText), false, kLineSize, true, TextStyle{});
}

void RoomSession::onRemoved(const ServerMessage& message) {
    // channel ":" why; the reason may hold ":" itself.
    const QString channel = message.payload.section(QLatin1Char(':'), 0, 0);
    const QString why = message.payload.section(QLatin1Char(':'), 1);
    const int index = roomIndex(channel);
    if (index < 0) {
        return;
    }
    showLine(index, QStringLiteral("Server: "),
             QStringLiteral("You have been removed from this channel..."),
             settings_.values().color(ColorScheme::HostNick),
             settings_.values().color(ColorScheme::HostText));
    // The server has taken the member out already: the tab goes without a leave request.
    const QString spelled = room(index).name;
    removeRoom(index);
    emit removedFromRoom(spelled, why);
}

void RoomSession::onLinkState(bool online) {
    if (online) {
        return;
    }
    // The lists are stale the moment the link is gone; the tabs stay for the rejoin.
    ++rejoinRound_;
    for (int i = 0; i < count(); ++i) {
        Room& stale = rooms_[static_cast<std::size_t>(i)];
        stale.members.clear();
        stale.listed = false;
        emit membersChanged(i);
    }
}

void RoomSession::onLoginAccepted() {
    ++rejoinRound_;
    for (int i = 0; i < count(); ++i) {
        // One channel a second, so that a member in many channels does not flood the server.
        const int seconds = i + 1;
        showLine(i, kServerLabel,
                 QStringLiteral("Rejoining chat room in %1 second(s).").arg(seconds),
                 settings_.values().color(ColorScheme::HostNick),
                 settings_.values().color(ColorScheme::HostText));
        const Room& again = room(i);
        rejoinLater(
            again.password.isEmpty() ? again.name : again.name + QLatin1Char(':') + again.password,
            seconds);
    }
}

void RoomSession::rejoinLater(const QString& request, int seconds) {
    const int round = rejoinRound_;
    QTimer::singleShot(seconds * 1000, this, [this, request, round] {
        if (round != rejoinRound_) {
            return;
        }
        // The request is the channel, and its password after a ":" when it has one.
        if (server_.online() && roomIndex(request.section(QLatin1Char(':'), 0, 0)) >= 0) {
            server_.link().SendPacket(request, out::kJoinRoom);
        }
    });
}

void RoomSession::onSessionSettings(const QString& defaultRoom) {
    bool joinedAny = false;
    if (settings_.values().autoJoin) {
        runPerformList(joinedAny);
    }
    // A member who has no channel open and asked for none lands in the server's default room.
    if (!joinedAny && count() == 0 && !defaultRoom.isEmpty()) {
        server_.link().SendPacket(defaultRoom, out::kJoinRoom);
    }
}

void RoomSession::runPerformList(bool& joinedAny) {
    // The perform list holds text commands: "/join " opens a channel as typing it would; every
    // other command (away, back, ...) is a status line for the server.
    for (const QString& command : performList_.commands()) {
        const QString trimmed = command.trimmed();
        if (trimmed.toLower().startsWith(QLatin1String("/join "))) {
            const QString channel = trimmed.mid(6).trimmed();
            if (channel.isEmpty()) {
                continue;
            }
            joinedAny = true;
            if (roomIndex(channel) < 0) {
                server_.link().SendPacket(channel, out::kJoinRoom);
            }
            continue;
        }
        server_.link().SendPacket(trimmed, out::kAwayStatus);
    }
}

void RoomSession::onFloodLimits(int maximum, int drainMs) {
    flooder_.setMaximum(std::clamp(maximum, 1, 1000));
    drain_.setInterval(std::clamp(drainMs, 50, 60000));
}

void RoomSession::playLineSound(bool fromChanHost) {
    if (fromChanHost) {
        sounds_.play(SoundSlots::ChannelHost);
        return;
    }
    if (lastLineSound_.isValid() && lastLineSound_.elapsed() < kLineSoundGapMs) {
        return;
    }
    lastLineSound_.start();
    sounds_.play(SoundSlots::ChannelMessage);
}

}  // namespace tavren
