#include "pm/PrivateChats.h"

#include "config/Settings.h"
#include "config/SoundPlayer.h"
#include "config/SoundSlots.h"
#include "contacts/IgnoreList.h"
#include "core/AwayStatus.h"
#include "core/Prompter.h"
#include "core/ServerSession.h"
#include "core/WireText.h"
#include "core/protocol/Catalogue.h"
#include "pm/AwayReply.h"
#include "pm/BuddyDirectory.h"
#include "pm/PrivateInput.h"
#include "pm/PrivateMessage.h"
#include "render/ChatLineFormatter.h"
#include "render/FormatLines.h"
#include "render/NicknameFormat.h"
#include "render/TextStyle.h"
#include "rooms/RoomSession.h"

namespace tavren {

namespace in = protocol::server_to_client;
namespace out = protocol::client_to_server;

namespace {

const QString kServerLabel = QStringLiteral("Server:");
const QString kNoticeLabel = QStringLiteral("Notice:");

// user ":" rest, split once; nothing when there is no ":" or the user cannot be a member.
std::optional<std::pair<QString, QString>> userAndRest(const QString& payload) {
    const qsizetype colon = payload.indexOf(QLatin1Char(':'));
    if (colon < 0) {
        return std::nullopt;
    }
    const QString user = payload.left(colon);
    if (!PrivateMessage::isPlausibleName(user)) {
        return std::nullopt;
    }
    return std::pair{user, payload.mid(colon + 1)};
}

}  // namespace

PrivateChats::PrivateChats(ServerSession& server, Settings& settings, SoundPlayer& sounds,
                           IgnoreList& ignoreList, AwayStatus& away, RoomSession& rooms,
                           const ChatLineFormatter& formatter, Prompter& prompter, QObject* parent)
    : QObject(parent),
      server_(server),
      settings_(settings),
      sounds_(sounds),
      ignoreList_(ignoreList),
      away_(away),
      rooms_(rooms),
      formatter_(formatter),
      prompter_(prompter) {
    typing_.setObjectName(QStringLiteral("Typing"));
    typing_.setInterval(kTypingIntervalMs);
    connect(&typing_, &QTimer::timeout, this, &PrivateChats::typingTick);

    ServerDispatcher& dispatcher = server_.dispatcher();
    using Message = const ServerMessage&;
    dispatcher.route(in::kPrivateMessage, [this](Message m) { onPrivateMessage(m); });
    dispatcher.route(in::kPrivateNotice, [this](Message m) { onPrivateNotice(m); });
    dispatcher.route(in::kTypingStatus, [this](Message m) { onTypingStatus(m); });

    // Going away (again) or coming back starts a new away period: every conversation may get
    // one answer in it.
    connect(&away_, &AwayStatus::changed, this, [this] {
        for (Conversation& each : conversations_) {
            each.awayReplied = false;
        }
    });
}

QString PrivateChats::ownName() const {
    const QString name = server_.login().userName();
    return name.isEmpty() ? settings_.nickname() : name;
}

int PrivateChats::positionOf(const QString& user) const {
    for (int i = 0; i < count(); ++i) {
        if (conversation(i).user.compare(user, Qt::CaseInsensitive) == 0) {
            return i;
        }
    }
    return -1;
}

int PrivateChats::positionOfIndex(int index) const {
    for (int i = 0; i < count(); ++i) {
        if (conversation(i).index == index) {
            return i;
        }
    }
    return -1;
}

void PrivateChats::select(int position) {
    if (position < 0 || position >= count()) {
        return;
    }
    Conversation& chosen = at(position);
    if (chosen.unread) {
        chosen.unread = false;
        emit unreadChanged(position);
    }
    if (position != selected_) {
        selected_ = position;
        emit selectionChanged(position);
    }
}

bool PrivateChats::isBuddy(int position) const {
    return buddies_ != nullptr && position >= 0 && position < count() &&
           buddies_->contains(conversation(position).user);
}

void PrivateChats::appendPrivateLine(const QString& conversationKey, const QString& html) {
    const int position = positionOf(conversationKey);
    if (position >= 0) {
        emit lineAdded(conversation(position).index, html);
    }
}

int PrivateChats::openConversation(const QString& user) {
    const QString name = user.trimmed();
    if (!PrivateMessage::isPlausibleName(name)) {
        return -1;
    }
    const int position = findOrOpen(name, true);
    select(position);
    return position;
}

int PrivateChats::openForPeer(const QString& user) {
    if (!PrivateMessage::isPlausibleName(user)) {
        return -1;
    }
    const int position = findOrOpen(user, false);
    if (position >= 0 && position != selected_ && !conversation(position).unread) {
        at(position).unread = true;
        emit unreadChanged(position);
    }
    return position;
}

bool PrivateChats::isIgnored(const QString& user) const {
    return ignoreList_.contains(user);
}

int PrivateChats::lowestFreeIndex() const {
    for (int index = 0; index < kMaxConversations; ++index) {
        if (!indexesInUse_.test(static_cast<std::size_t>(index))) {
            return index;
        }
    }
    return -1;
}

int PrivateChats::findOrOpen(const QString& user, bool byMember) {
    const int existing = positionOf(user);
    if (existing >= 0) {
        return existing;
    }
    const int index = lowestFreeIndex();
    if (index < 0) {
        tellRefused(user, byMember);
        return -1;
    }
    indexesInUse_.set(static_cast<std::size_t>(index));
    Conversation opened;
    opened.user = user;
    opened.index = index;
    conversations_.push_back(opened);
    if (!typing_.isActive()) {
        typing_.start();
    }
    const int position = count() - 1;
    emit conversationOpened(position, byMember);
    // A message must not pull the member away from the conversation they are in.
    if (byMember || selected_ < 0) {
        select(position);
    }
    return position;
}

void PrivateChats::tellRefused(const QString& user, bool byMember) {
    const QString reason = QStringLiteral(
                               "%1 private conversations are open already. Close one "
                               "to talk to %2.")
                               .arg(kMaxConversations)
                               .arg(user);
    if (byMember || selected_ < 0) {
        prompter_.message(reason, QStringLiteral("Private Messages"), Prompter::Icon::Warning);
        return;
    }
    showNotice(selected_, QStringLiteral("Private Messages:"),
               user + QStringLiteral(" sent you a private message, but ") + reason);
}

void PrivateChats::closeConversation(int position) {
    if (position < 0 || position >= count()) {
        return;
    }
    const int index = conversation(position).index;
    indexesInUse_.reset(static_cast<std::size_t>(index));
    conversations_.erase(conversations_.begin() + position);
    const bool wasSelected = position == selected_;
    if (count() == 0) {
        selected_ = -1;
        typing_.stop();
    } else if (wasSelected) {
        // The tab that took its place, or the one before when it was the last.
        selected_ = position < count() ? position : count() - 1;
    } else if (selected_ > position) {
        --selected_;
    }
    emit conversationClosed(position, index);
    if (wasSelected && selected_ >= 0 && at(selected_).unread) {
        at(selected_).unread = false;
        emit unreadChanged(selected_);
    }
}

void PrivateChats::closeAll() {
    while (count() > 0) {
        closeConversation(count() - 1);
    }
}

bool PrivateChats::submit(int position, const QString& entryText) {
    if (position < 0 || position >= count()) {
        return true;
    }
    const PrivateInput input = PrivateInput::classify(entryText);
    switch (input.kind) {
        case PrivateInput::Kind::Nothing:
            return true;
        case PrivateInput::Kind::Clear:
            clearPane(position);
            return true;
        case PrivateInput::Kind::Back:
        case PrivateInput::Kind::Away:
            server_.link().SendPacket(input.text, out::kAwayStatus);
            return true;
        case PrivateInput::Kind::Message:
            break;
    }
    if (!server_.online()) {
        showNotice(position, kServerLabel,
                   QStringLiteral("You are not connected: your message was not sent."));
        return false;
    }
    if (WireText::toWire(input.text).size() > std::size_t{kMaxMessageBytes}) {
        showNotice(position, kServerLabel,
                   QStringLiteral("Your message was not sent: a message holds at most %1 "
                                  "characters.")
                       .arg(kMaxMessageBytes));
        return false;
    }
    sendMessage(position, input.text);
    return true;
}

void PrivateChats::sendMessage(int position, const QString& text) {
    const SettingsValues& values = settings_.values();
    // The formatter puts pictures in place of smiley codes in what it is given; the other
    // member's client does that with its own pictures, so the codes go out as typed.
    showLine(conversation(position).user, ownName() + QLatin1Char(':'), text,
             values.color(ColorScheme::OwnNick), values.color(ColorScheme::OwnText), false,
             kLineSize, TextStyle{});
    server_.link().SendPacket(conversation(position).user + QLatin1Char(':') + text,
                              out::kPrivateMessage);
}

void PrivateChats::clearPane(int position) {
    if (position >= 0 && position < count()) {
        emit paneCleared(conversation(position).index);
    }
}

void PrivateChats::noteEdit(int position, Edit edit, bool boxHasText) {
    if (position < 0 || position >= count()) {
        return;
    }
    Conversation& changed = at(position);
    changed.boxHasText = boxHasText;
    changed.editedSinceTick = true;
    if (!boxHasText) {
        setOwnTyping(position, TypingStatus::Idle);
        return;
    }
    setOwnTyping(position, edit == Edit::Grew ? TypingStatus::Typing : TypingStatus::Deleting);
}

void PrivateChats::typingTick() {
    for (int i = 0; i < count(); ++i) {
        Conversation& each = at(i);
        const bool busy =
            each.ownTyping == TypingStatus::Typing || each.ownTyping == TypingStatus::Deleting;
        if (busy && !each.editedSinceTick) {
            setOwnTyping(i, each.boxHasText ? TypingStatus::EnteredText : TypingStatus::Idle);
        }
        each.editedSinceTick = false;
    }
}

void PrivateChats::setOwnTyping(int position, TypingStatus status) {
    Conversation& changed = at(position);
    if (changed.ownTyping == status) {
        return;
    }
    changed.ownTyping = status;
    emit ownTypingChanged(position);
    if (server_.online()) {
        server_.link().SendPacket(changed.user + QLatin1Char(':') + typingCode(status),
                                  out::kTypingStatus);
    }
}

PrivateChats::IgnoreResult PrivateChats::ignoreUser(int position) {
    if (position < 0 || position >= count()) {
        return IgnoreResult::Self;
    }
    const QString name = conversation(position).user;
    if (name.compare(ownName(), Qt::CaseInsensitive) == 0) {
        prompter_.message(QStringLiteral("You can't ignore yourself. (Can You?...)"),
                          QStringLiteral("Error!"), Prompter::Icon::Warning);
        return IgnoreResult::Self;
    }
    if (ignoreList_.add(name)) {
        ignoreList_.save();
    }
    showNotice(position, kServerLabel, QStringLiteral("Ignoring User..."));
    return IgnoreResult::Ignored;
}

void PrivateChats::addBuddy(int position) {
    if (position < 0 || position >= count()) {
        return;
    }
    const QString name = conversation(position).user;
    if (buddies_ == nullptr) {
        server_.link().SendPacket(name, out::kAddBuddy);
        return;
    }
    if (!buddies_->contains(name)) {
        buddies_->addBuddy(name);
    }
}

void PrivateChats::locate(int position) {
    if (position >= 0 && position < count()) {
        server_.link().SendPacket(conversation(position).user, out::kLocateUser);
    }
}

QStringList PrivateChats::channels() const {
    QStringList names;
    for (int i = 0; i < rooms_.count(); ++i) {
        names << rooms_.room(i).name;
    }
    return names;
}

void PrivateChats::inviteToChannel(int position, const QString& channel) {
    if (position < 0 || position >= count()) {
        return;
    }
    const QString name = conversation(position).user;
    if (name.compare(ownName(), Qt::CaseInsensitive) == 0) {
        prompter_.message(QStringLiteral("You cannot invite yourself.."),
                          QStringLiteral("Error: Lazyness.."), Prompter::Icon::Warning);
        return;
    }
    const QStringList open = channels();
    if (open.isEmpty()) {
        prompter_.message(QStringLiteral("No active channels present..."),
                          QStringLiteral("Error.."), Prompter::Icon::Warning);
        return;
    }
    // A channel the member has left since the choice was offered falls back to the room
    // window's current one.
    const int chosen = rooms_.roomIndex(channel);
    const QString target =
        chosen >= 0 ? rooms_.room(chosen).name
                    : (rooms_.selected() >= 0 ? rooms_.room(rooms_.selected()).name : open.first());
    server_.link().SendPacket(name + QLatin1Char(';') + target, out::kInviteToRoom);
    prompter_.message(QStringLiteral("You have invited user ") + name +
                          QStringLiteral(" to join channel ") + target + QLatin1Char('.'),
                      QStringLiteral("Invite Success!"), Prompter::Icon::Information);
}

void PrivateChats::showPresenceNotice(const QString& user, bool online) {
    const int position = positionOf(user);
    if (position < 0) {
        return;
    }
    const QString state = online
                              ? QStringLiteral("(<font color='#008000'><b>Online</b></font>)..")
                              : QStringLiteral("(<font color='#FF0000'><b>Offline</b></font>)..");
    showNotice(position, conversation(position).user, QStringLiteral("is now ") + state);
}

void PrivateChats::showNotice(int position, const QString& label, const QString& text) {
    const SettingsValues& values = settings_.values();
    showLine(conversation(position).user, label, text, values.color(ColorScheme::HostNick),
             values.color(ColorScheme::HostText), false, kLineSize, TextStyle{});
}

void PrivateChats::showLine(const QString& user, const QString& label, QString text,
                            WinColor nameColor, WinColor textColor, bool boldText, int size,
                            const TextStyle& style) {
    FormatPrivateLine(formatter_, *this, user, label, text, nameColor, textColor, boldText, size,
                      style);
}

void PrivateChats::onPrivateMessage(const ServerMessage& message) {
    const auto incoming = PrivateMessage::parse(message.payload);
    if (!incoming || ignoreList_.contains(incoming->sender)) {
        return;
    }
    const bool alreadyOpen = positionOf(incoming->sender) >= 0;
    // "Dim Private Messages": only conversations the member has open may receive.
    if (!alreadyOpen && settings_.values().ignorePms) {
        return;
    }
    const int position = findOrOpen(incoming->sender, false);
    if (position < 0) {
        return;
    }
    if (conversation(position).user != incoming->sender) {
        at(position).user = incoming->sender;
        emit captionChanged(position);
    }

    const QString label = incoming->sender + QLatin1Char(':');
    const SettingsValues& values = settings_.values();
    if (const auto format = NicknameFormat::parse(incoming->format)) {
        showLine(incoming->sender, label, incoming->text, format->nameColor, format->textColor,
                 format->bold, format->size, format->textStyle());
    } else {
        showLine(incoming->sender, label, incoming->text, values.color(ColorScheme::TheirNick),
                 values.color(ColorScheme::TheirText), false, kLineSize, TextStyle{});
    }
    if (position != selected_ && !conversation(position).unread) {
        at(position).unread = true;
        emit unreadChanged(position);
    }
    sounds_.play(alreadyOpen ? SoundSlots::PrivateMessage : SoundSlots::PrivateMessageNew);
    emit messageArrived(incoming->sender, incoming->text, !alreadyOpen);

    const bool fromSelf = incoming->sender.compare(ownName(), Qt::CaseInsensitive) == 0;
    if (away_.away() && !fromSelf && !conversation(position).awayReplied &&
        !AwayReply::isAwayReply(incoming->text)) {
        answerWhileAway(position);
    }
}

void PrivateChats::answerWhileAway(int position) {
    at(position).awayReplied = true;
    if (server_.online()) {
        sendMessage(position, AwayReply::textFor(away_.message()));
    }
}

void PrivateChats::onPrivateNotice(const ServerMessage& message) {
    const auto notice = userAndRest(message.payload);
    if (!notice || notice->second.isEmpty()) {
        return;
    }
    const int position = findOrOpen(notice->first, false);
    if (position < 0) {
        return;
    }
    showNotice(position, kNoticeLabel, notice->second);
    if (position != selected_ && !conversation(position).unread) {
        at(position).unread = true;
        emit unreadChanged(position);
    }
}

void PrivateChats::onTypingStatus(const ServerMessage& message) {
    const auto typing = userAndRest(message.payload);
    if (!typing) {
        return;
    }
    const int position = positionOf(typing->first);
    const auto status = typingStatusFromCode(typing->second);
    if (position < 0 || !status || ignoreList_.contains(typing->first)) {
        return;
    }
    if (conversation(position).peerTyping != *status) {
        at(position).peerTyping = *status;
        emit peerTypingChanged(position);
    }
}

}  // namespace tavren
