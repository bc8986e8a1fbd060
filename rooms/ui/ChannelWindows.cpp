#include "rooms/ui/ChannelWindows.h"

#include <QWidget>

#include "core/ClientSession.h"
#include "core/Prompter.h"
#include "rooms/RoomInvitations.h"
#include "rooms/RoomSession.h"
#include "rooms/ui/ChatCreate.h"
#include "rooms/ui/ChatInvite.h"
#include "rooms/ui/ChatJoin.h"
#include "rooms/ui/ChatPassword.h"
#include "rooms/ui/ChatSendInvite.h"

namespace tavren {

ChannelWindows::ChannelWindows(ClientSession& session, Prompter& prompter, RoomCommandHost& host,
                               QObject* parent)
    : QObject(parent), session_(session), prompter_(prompter), host_(host) {
    RoomSession& rooms = session_.rooms();
    connect(&rooms.invitations(), &RoomInvitations::invited, this, &ChannelWindows::showInvitation);
    connect(&rooms, &RoomSession::passwordRequested, this, &ChannelWindows::askPassword);
    connect(&rooms, &RoomSession::removedFromRoom, this, &ChannelWindows::tellRemoved);
    // Prompts belong to the session they came in: a new login starts without them.
    connect(&session_.server(), &ServerSession::onlineChanged, this, [this](bool online) {
        if (online) {
            return;
        }
        for (const auto& prompt : std::as_const(invites_)) {
            if (prompt) {
                prompt->close();
            }
        }
        for (const auto& prompt : std::as_const(passwords_)) {
            if (prompt) {
                prompt->close();
            }
        }
    });
}

ChannelWindows::~ChannelWindows() {
    // The windows are top-level (no parent holds them), so they go with this object.
    delete directory_;
    delete creation_;
    delete sender_;
    for (const auto& prompt : std::as_const(invites_)) {
        delete prompt;
    }
    for (const auto& prompt : std::as_const(passwords_)) {
        delete prompt;
    }
}

void ChannelWindows::bringForward(QWidget& window) {
    if (window.isMinimized()) {
        window.showNormal();
    }
    window.show();
    window.raise();
    window.activateWindow();
}

void ChannelWindows::openDirectory() {
    session_.rooms().directory().request();
    showDirectory();
}

void ChannelWindows::showDirectory() {
    if (directory_ == nullptr) {
        directory_ =
            new ChatJoin(session_.rooms().directory(), session_.server(), session_.store(), host_);
        directory_->setAttribute(Qt::WA_QuitOnClose, false);
    }
    bringForward(*directory_);
}

void ChannelWindows::openCreation() {
    if (creation_ == nullptr) {
        creation_ = new ChatCreate(session_.server().link(), prompter_);
        creation_->setAttribute(Qt::WA_QuitOnClose, false);
    }
    bringForward(*creation_);
}

void ChannelWindows::openInviteSender(const QString& user) {
    if (!session_.rooms().invitations().canInvite(prompter_)) {
        return;
    }
    if (sender_ == nullptr) {
        sender_ = new ChatSendInvite(session_.rooms(), prompter_);
        sender_->setAttribute(Qt::WA_QuitOnClose, false);
    }
    sender_->prepare(user);
    bringForward(*sender_);
}

ChatJoin* ChannelWindows::directoryWindow() const {
    return directory_;
}

ChatCreate* ChannelWindows::creationWindow() const {
    return creation_;
}

ChatSendInvite* ChannelWindows::inviteSender() const {
    return sender_;
}

QList<ChatInvite*> ChannelWindows::invitePrompts() const {
    QList<ChatInvite*> open;
    for (const auto& prompt : invites_) {
        if (prompt) {
            open << prompt.data();
        }
    }
    return open;
}

ChatPassword* ChannelWindows::passwordPrompt(const QString& channel) const {
    for (const auto& prompt : passwords_) {
        ChatPassword* open = prompt.data();
        if (open && QString::compare(open->channel(), channel, Qt::CaseInsensitive) == 0) {
            return open;
        }
    }
    return nullptr;
}

void ChannelWindows::showInvitation(const RoomInvitation& invitation) {
    invites_.removeAll(nullptr);
    for (ChatInvite* open : invitePrompts()) {
        const RoomInvitation& shown = open->invitation();
        if (shown.channel.compare(invitation.channel, Qt::CaseInsensitive) == 0 &&
            shown.inviter.compare(invitation.inviter, Qt::CaseInsensitive) == 0) {
            open->raise();
            return;
        }
    }
    if (invites_.size() >= kMaxInvitePrompts) {
        return;  // nobody can bury the screen in invitations
    }
    auto* prompt = new ChatInvite(session_.rooms().invitations(), invitation);
    prompt->setAttribute(Qt::WA_DeleteOnClose);
    prompt->setAttribute(Qt::WA_QuitOnClose, false);
    invites_ << prompt;
    prompt->show();
}

void ChannelWindows::askPassword(const QString& channel, const QString& sentence) {
    passwords_.removeAll(nullptr);
    ChatPassword* prompt = passwordPrompt(channel);
    if (prompt == nullptr) {
        prompt = new ChatPassword(session_.rooms(), channel);
        prompt->setAttribute(Qt::WA_DeleteOnClose);
        prompt->setAttribute(Qt::WA_QuitOnClose, false);
        passwords_ << prompt;
    }
    prompt->ask(sentence);
    bringForward(*prompt);
}

void ChannelWindows::tellRemoved(const QString& channel, const QString& why) {
    QString text = QStringLiteral("You have been removed from this channel...\n\n") + channel;
    if (!why.isEmpty()) {
        text += QStringLiteral("\n") + why;
    }
    prompter_.message(text, QStringLiteral("Removed from ") + channel, Prompter::Icon::Warning);
}

}  // namespace tavren
