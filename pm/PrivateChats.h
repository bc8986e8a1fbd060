#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <bitset>
#include <vector>

#include "config/WinColor.h"
#include "core/ServerMessage.h"
#include "pm/Conversation.h"
#include "render/LineTargets.h"

namespace tavren {

class AwayStatus;
class BuddyDirectory;
class ChatLineFormatter;
class IgnoreList;
class Prompter;
class RoomSession;
class ServerSession;
class Settings;
class SoundPlayer;
struct TextStyle;

// The member's private conversations, in tab order, and everything that happens in them:
// messages both ways, the server's notices about them, typing status both ways, the away
// answer, buddy presence, and the small member actions of the conversation window. The window
// shows this state and forwards the member's actions; nothing here needs a widget.
//
// A conversation is found by the other member's name (any letter case) and owns an index
// 0..99, the tag of its tab, by which the window finds the conversation's pane and entry box.
// Indexes are given out lowest first and reused after a close.
class PrivateChats : public QObject, public PrivateLineTarget {
    Q_OBJECT
  public:
    static constexpr int kMaxConversations = 100;
    // Every line of a conversation pane uses this font size.
    static constexpr int kLineSize = 2;
    // The `Typing` timer: a member who changed nothing in the entry box for a whole interval
    // has stopped typing.
    static constexpr int kTypingIntervalMs = 1500;
    // The server refuses longer messages; the client says so before sending.
    static constexpr int kMaxMessageBytes = 2048;

    PrivateChats(ServerSession& server, Settings& settings, SoundPlayer& sounds,
                 IgnoreList& ignoreList, AwayStatus& away, RoomSession& rooms,
                 const ChatLineFormatter& formatter, Prompter& prompter, QObject* parent = nullptr);

    int count() const { return static_cast<int>(conversations_.size()); }
    // By position in tab order.
    const Conversation& conversation(int position) const {
        return conversations_.at(static_cast<std::size_t>(position));
    }
    // The position of the conversation with `user` (any letter case), or -1.
    int positionOf(const QString& user) const;
    // The position of the conversation whose tag is `index`, or -1.
    int positionOfIndex(int index) const;
    int selected() const { return selected_; }
    // A tab was chosen: its unread mark goes.
    void select(int position);
    QString ownName() const;

    // The buddy list as the tab menu sees it; may stay null (then "add" asks the server
    // directly and nobody counts as a buddy yet).
    void setBuddyDirectory(BuddyDirectory* directory) { buddies_ = directory; }
    bool isBuddy(int position) const;

    // Where private lines go (the formatter finds the conversation by the user's name).
    void appendPrivateLine(const QString& conversationKey, const QString& html) override;

    // Opens the conversation with `user` (or finds the open one) and selects it: the main
    // menu, the buddy list and the room member menu start conversations this way. Returns its
    // position, or -1 when the name cannot be a member's or 100 conversations are open (the
    // member is told).
    int openConversation(const QString& user);
    // Finds or opens the conversation with `user` for something the other member started (a
    // direct-connection offer): like a message, it does not take the selection and is marked
    // unread unless selected. -1 when the name cannot be a member's or 100 are open.
    int openForPeer(const QString& user);
    bool isIgnored(const QString& user) const;
    // Removes the conversation's tab; the window retitles.
    void closeConversation(int position);
    void closeAll();

    // What the member sent from a conversation's entry box, in this order: "/clear" empties
    // the pane, "/back" and "/away..." go to the server as status lines, anything else is
    // shown in the pane headed by the member's own name and sent to the other member.
    // Returns false when the text must stay in the box (not connected, too long).
    bool submit(int position, const QString& entryText);
    void clearPane(int position);

    // The entry box changed: its text grew or shrank, and whether it holds text now.
    enum class Edit { Grew, Shrank };
    void noteEdit(int position, Edit edit, bool boxHasText);
    // The `Typing` timer: who has not changed their box for a whole interval has stopped.
    void typingTick();
    QTimer& typingTimer() { return typing_; }

    // "Ignoring User..." and the name joins the ignore list and its file; the member's own
    // name is refused with a box before anything is written.
    enum class IgnoreResult { Ignored, Self };
    IgnoreResult ignoreUser(int position);
    // The tab menu's "Add User to Buddy List...".
    void addBuddy(int position);
    // (2, 9); the main window shows the answer.
    void locate(int position);
    // The member's channels, in the room window's tab order.
    QStringList channels() const;
    // Invites the conversation's user to `channel`; the member is told the outcome in a box.
    void inviteToChannel(int position, const QString& channel);

    // "<user>  is now (Online).." in the conversation with that user, when one is open.
    void showPresenceNotice(const QString& user, bool online);

    // Server messages, routed here by the dispatcher.
    void onPrivateMessage(const ServerMessage& message);
    void onPrivateNotice(const ServerMessage& message);
    void onTypingStatus(const ServerMessage& message);

  signals:
    // A conversation got its tab; `byMember` when the member asked for it (the window comes
    // forward), not when a message opened it.
    void conversationOpened(int position, bool byMember);
    // The conversation at `position` is gone with its controls (tag `index`); selected() is
    // already the tab that takes its place.
    void conversationClosed(int position, int index);
    void selectionChanged(int position);
    void captionChanged(int position);
    void unreadChanged(int position);
    void ownTypingChanged(int position);
    void peerTypingChanged(int position);
    void lineAdded(int index, const QString& html);
    void paneCleared(int index);
    // A message from another member was shown: for the tray and the taskbar.
    void messageArrived(const QString& user, const QString& text, bool openedConversation);

  private:
    Conversation& at(int position) { return conversations_.at(static_cast<std::size_t>(position)); }
    // Finds or opens; -1 when 100 are open (the selected conversation says why).
    int findOrOpen(const QString& user, bool byMember);
    int lowestFreeIndex() const;
    void tellRefused(const QString& user, bool byMember);
    void setOwnTyping(int position, TypingStatus status);
    void answerWhileAway(int position);
    void sendMessage(int position, const QString& text);
    void showNotice(int position, const QString& label, const QString& text);
    void showLine(const QString& user, const QString& label, QString text, WinColor nameColor,
                  WinColor textColor, bool boldText, int size, const TextStyle& style);

    ServerSession& server_;
    Settings& settings_;
    SoundPlayer& sounds_;
    IgnoreList& ignoreList_;
    AwayStatus& away_;
    RoomSession& rooms_;
    const ChatLineFormatter& formatter_;
    Prompter& prompter_;
    BuddyDirectory* buddies_ = nullptr;
    std::vector<Conversation> conversations_;
    std::bitset<kMaxConversations> indexesInUse_;
    int selected_ = -1;
    QTimer typing_;
};

}  // namespace tavren
