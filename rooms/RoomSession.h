#pragma once

#include <QElapsedTimer>
#include <QHash>
#include <QObject>
#include <QString>
#include <QTimer>
#include <vector>

#include "config/WinColor.h"
#include "core/FloodMeter.h"
#include "core/ServerMessage.h"
#include "render/LineTargets.h"
#include "rooms/ChannelDirectory.h"
#include "rooms/Room.h"
#include "rooms/RoomInvitations.h"

namespace tavren {

class ChatLineFormatter;
class IgnoreList;
class PerformList;
class ServerSession;
class Settings;
class SoundPlayer;
struct TextStyle;

// The channels the member has joined, in tab order, and everything that happens in them: joins
// and leaves, member lists, lines from the server formatted for the panes, the member's own
// lines, the flood meter, and getting back into the channels after the link was lost. The room
// window shows this state and forwards the member's actions; nothing here needs a widget.
class RoomSession : public QObject, public RoomLineTarget {
    Q_OBJECT
  public:
    // Every line of a channel pane uses this font size.
    static constexpr int kLineSize = 2;

    RoomSession(ServerSession& server, Settings& settings, SoundPlayer& sounds,
                IgnoreList& ignoreList, PerformList& performList,
                const ChatLineFormatter& formatter, QObject* parent = nullptr);
    ~RoomSession() override;

    int count() const { return static_cast<int>(rooms_.size()); }
    const Room& room(int index) const { return rooms_.at(static_cast<std::size_t>(index)); }
    int selected() const { return selected_; }
    // A tab was chosen: its unread mark goes.
    void select(int index);
    int indexOfPane(int paneIndex) const;
    QString ownName() const;

    // Where room lines go (the formatters find the room by channel name).
    int roomIndex(const QString& channel) const override;
    int paneIndex(int room) const override;
    void AddChat(const QString& html, int paneIndex) override;
    bool isSelected(int room) const override;
    void markUnread(int room) override;

    // Asks the server for a channel; a channel that is already open is not asked for again,
    // the current channel says so instead.
    void join(const QString& channel);
    // The same from the channel directory or an invitation, whose refusal reads "You are already
    // located in: " + channel + "!". False when nothing was sent.
    bool joinListed(const QString& channel);
    // The password prompt's answer to a protected channel: (2, 4) channel ":" password. The
    // password is kept with the channel once joined, for getting back in after a lost link.
    void joinWithPassword(const QString& channel, const QString& password);

    ChannelDirectory& directory() { return directory_; }
    RoomInvitations& invitations() { return invitations_; }
    // Leaves one channel: the server is told and the tab goes.
    void leave(int index);
    // The room window closes: every channel is left at once.
    void leaveAll();
    // The member's line for a channel. Not sent, with a line saying why, while the link is
    // down or the flood meter is full; false only in the second case, where the member's text
    // should stay in the box to be sent a moment later.
    bool sendLine(int index, const QString& text);
    void clearPane(int index);
    // The member list's "Ignore" entry: the name joins the ignore list and its file.
    enum class IgnoreResult { Ignored, Self, Already, NoName };
    IgnoreResult ignoreMember(int index, const QString& listedName);
    // A line of the client's own in a channel's pane.
    void showLine(int index, const QString& label, const QString& text, WinColor nameColor,
                  WinColor textColor);
    // A notice for every open channel (connection lost, reconnecting...).
    void showInEveryRoom(const QString& label, const QString& text);

    FloodMeter& flooder() { return flooder_; }
    int drainIntervalMs() const { return drain_.interval(); }

    // Server messages, routed here by the dispatcher.
    void onJoined(const ServerMessage& message);
    void onMemberList(const ServerMessage& message);
    void onChannelLine(const ServerMessage& message);
    void onRemoved(const ServerMessage& message);

  signals:
    void roomOpened(int index);
    // The room at `index` is gone; its pane, list and input box go with it.
    void roomRemoved(int index, int paneIndex);
    void membersChanged(int index);
    void unreadChanged(int index);
    void selectionChanged(int index);
    void lineAdded(int paneIndex, const QString& html);
    void paneCleared(int paneIndex);
    // A protected channel asks for its password (the server's sentence says why: the first ask,
    // or a wrong password).
    void passwordRequested(const QString& channel, const QString& sentence);
    // Somebody took the member out of a channel (kicked, banned); its tab is gone already.
    void removedFromRoom(const QString& channel, const QString& why);

  private:
    void openRoom(const QString& name);
    void removeRoom(int index);
    void noteMemberChanges(int index, const QStringList& before, const QStringList& after);
    void onLinkState(bool online);
    void onLoginAccepted();
    void onSessionSettings(const QString& defaultRoom);
    void onFloodLimits(int maximum, int drainMs);
    void rejoinLater(const QString& request, int seconds);
    void runPerformList(bool& joinedAny);
    void playLineSound(bool fromChanHost);
    void showFormatted(const QString& channel, const QString& label, QString text,
                       WinColor nameColor, WinColor textColor, bool boldText, int size,
                       bool highlight, const TextStyle& style);

    ServerSession& server_;
    Settings& settings_;
    SoundPlayer& sounds_;
    IgnoreList& ignoreList_;
    PerformList& performList_;
    const ChatLineFormatter& formatter_;
    std::vector<Room> rooms_;
    int selected_ = -1;
    int nextPaneIndex_ = 0;
    // Rooms scheduled to be joined again after a re-login; a newer loss of the link cancels
    // the older schedule.
    int rejoinRound_ = 0;
    FloodMeter flooder_;
    QTimer drain_;
    bool meterRegistered_ = false;
    QElapsedTimer lastLineSound_;
    // Passwords sent with a join that the server has not answered yet, by lower-case channel.
    QHash<QString, QString> pendingPasswords_;
    ChannelDirectory directory_;
    RoomInvitations invitations_;
};

}  // namespace tavren
