#include "rooms/RoomInvitations.h"

#include "contacts/IgnoreList.h"
#include "core/Prompter.h"
#include "core/ServerSession.h"
#include "core/protocol/Catalogue.h"
#include "rooms/RoomSession.h"

namespace tavren {

namespace {
const QString kInvitePrefix = QStringLiteral("Invite: ");
}  // namespace

std::optional<RoomInvitation> RoomInvitation::parse(const QString& payload) {
    if (!payload.startsWith(kInvitePrefix)) {
        return std::nullopt;
    }
    const QString rest = payload.mid(kInvitePrefix.size());
    const int separator = rest.indexOf(QLatin1Char(';'));
    if (separator <= 0) {
        return std::nullopt;
    }
    RoomInvitation invitation{rest.left(separator).trimmed(), rest.mid(separator + 1).trimmed()};
    if (invitation.channel.isEmpty() || invitation.channel.contains(QLatin1Char(':')) ||
        invitation.channel.contains(QLatin1Char(';'))) {
        return std::nullopt;
    }
    return invitation;
}

QString RoomInvitation::text() const {
    return kInvitePrefix + inviter + QStringLiteral(" invites you to join the channel ") + channel +
           QLatin1Char('.');
}

RoomInvitations::RoomInvitations(ServerSession& server, RoomSession& rooms, IgnoreList& ignoreList,
                                 QObject* parent)
    : QObject(parent), server_(server), rooms_(rooms), ignoreList_(ignoreList) {
    server_.dispatcher().route(protocol::server_to_client::kRoomInvitation,
                               [this](const ServerMessage& m) { onInvitation(m); });
}

bool RoomInvitations::canInvite(Prompter& prompter) const {
    if (rooms_.count() == 0) {
        prompter.message(QStringLiteral("No active channels present..."), QStringLiteral("Error.."),
                         Prompter::Icon::Warning);
        return false;
    }
    return true;
}

bool RoomInvitations::invite(const QString& user, const QString& channel, Prompter& prompter) {
    const QString name = user.trimmed();
    if (!canInvite(prompter)) {
        return false;
    }
    if (!name.isEmpty() && name.compare(rooms_.ownName(), Qt::CaseInsensitive) == 0) {
        prompter.message(QStringLiteral("You cannot invite yourself.."),
                         QStringLiteral("Error: Lazyness.."), Prompter::Icon::Warning);
        return false;
    }
    if (channel.isEmpty()) {
        prompter.message(QStringLiteral("Select a channel first!"),
                         QStringLiteral("Select a channel..."), Prompter::Icon::Warning);
        return false;
    }
    if (name.isEmpty()) {
        prompter.message(QStringLiteral("Enter the name of the member to invite."),
                         QStringLiteral("Invite User"), Prompter::Icon::Warning);
        return false;
    }
    server_.link().SendPacket(name + QLatin1Char(';') + channel,
                              protocol::client_to_server::kInviteToRoom);
    prompter.message(QStringLiteral("You have invited user ") + name +
                         QStringLiteral(" to join channel ") + channel + QLatin1Char('.'),
                     QStringLiteral("Invite Success!"), Prompter::Icon::Information);
    return true;
}

bool RoomInvitations::accept(const RoomInvitation& invitation) {
    return rooms_.joinListed(invitation.channel);
}

void RoomInvitations::onInvitation(const ServerMessage& message) {
    const auto invitation = RoomInvitation::parse(message.payload);
    if (!invitation || ignoreList_.contains(invitation->inviter)) {
        return;
    }
    emit invited(*invitation);
}

}  // namespace tavren
