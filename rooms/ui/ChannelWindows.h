#pragma once

#include <QList>
#include <QObject>
#include <QPointer>

class QWidget;

namespace tavren {

class ChatCreate;
class ChatInvite;
class ChatJoin;
class ChatPassword;
class ChatSendInvite;
class ClientSession;
class Prompter;
class RoomCommandHost;
struct RoomInvitation;

// The channel windows: the directory, the creation form and the invitation sender, each made on
// first use and shown again after it was closed; an invitation prompt per invitation that
// arrives (a few at most; a repeated one comes forward instead of opening again); a password
// prompt per protected channel that asks; and the box that tells a member why they were removed
// from a channel. None of them holds up the link: what the server sends opens windows and
// returns.
class ChannelWindows : public QObject {
    Q_OBJECT
  public:
    // Invitation prompts open at once; more invitations meanwhile are dropped.
    static constexpr int kMaxInvitePrompts = 5;

    ChannelWindows(ClientSession& session, Prompter& prompter, RoomCommandHost& host,
                   QObject* parent = nullptr);
    ~ChannelWindows() override;

    // Asks the server for the list and shows the directory.
    void openDirectory();
    // Shows the directory without asking ("/findchan" has asked already).
    void showDirectory();
    void openCreation();
    // The main menu's invite: refused with a box when the member is in no channel.
    void openInviteSender(const QString& user = QString());

    // Null until first opened (for tests).
    ChatJoin* directoryWindow() const;
    ChatCreate* creationWindow() const;
    ChatSendInvite* inviteSender() const;
    QList<ChatInvite*> invitePrompts() const;
    ChatPassword* passwordPrompt(const QString& channel) const;

  private:
    void showInvitation(const RoomInvitation& invitation);
    void askPassword(const QString& channel, const QString& sentence);
    void tellRemoved(const QString& channel, const QString& why);
    static void bringForward(QWidget& window);

    ClientSession& session_;
    Prompter& prompter_;
    RoomCommandHost& host_;
    QPointer<ChatJoin> directory_;
    QPointer<ChatCreate> creation_;
    QPointer<ChatSendInvite> sender_;
    QList<QPointer<ChatInvite>> invites_;
    QList<QPointer<ChatPassword>> passwords_;
};

}  // namespace tavren
