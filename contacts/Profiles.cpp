#include "contacts/Profiles.h"

#include "core/ServerSession.h"
#include "core/protocol/Catalogue.h"

namespace tavren {

namespace out = protocol::client_to_server;

Profiles::Profiles(ServerSession& server, QObject* parent) : QObject(parent), server_(server) {
    server_.dispatcher().route(protocol::server_to_client::kProfile,
                               [this](const ServerMessage& m) { onProfile(m); });
    connect(&server_, &ServerSession::onlineChanged, this,
            [this](bool) { ownPageWanted_ = false; });
}

Profiles::Check Profiles::check(const QString& page) {
    if (page.isEmpty()) {
        return Check::Empty;
    }
    return page.size() > kMaxLength ? Check::TooLong : Check::Ok;
}

QString Profiles::countText(const QString& page) {
    return QStringLiteral("Count: (") + QString::number(page.size()) + QLatin1Char(')');
}

QString Profiles::tooLongText(const QString& page) {
    return QStringLiteral("Profile Limit is 10000 characters...") + QLatin1Char('\n') +
           QStringLiteral("Current Size is ") + QString::number(page.size());
}

QString Profiles::progressText(int step) {
    const int percent = qBound(0, step, kProgressSteps) * 100 / kProgressSteps;
    return QStringLiteral("Please Wait...(") + QString::number(percent) + QStringLiteral("%)");
}

QString Profiles::viewPrologue() {
    return QStringLiteral(
        "About:<body topmargin='0' leftmargin='0' rightmargin='0' bottommargin='0' "
        "marginwidth='0' marginheight='0'>");
}

QString Profiles::previewPrologue() {
    return QStringLiteral(
        "About:<body bgcolor='#BBD5FF' topmargin='0' leftmargin='0' rightmargin='0' "
        "bottommargin='0' marginwidth='0' marginheight='0'>");
}

bool Profiles::view(const QString& name) {
    const QString trimmed = name.trimmed();
    if (trimmed.isEmpty() || !server_.online()) {
        return false;
    }
    server_.link().SendPacket(trimmed, out::kViewProfile);
    return true;
}

bool Profiles::fetchOwn() {
    if (!view(server_.login().userName())) {
        return false;
    }
    ownPageWanted_ = true;
    return true;
}

bool Profiles::update(const QString& page) {
    if (check(page) != Check::Ok || !server_.online()) {
        return false;
    }
    server_.link().SendPacket(page, out::kUpdateProfile);
    return true;
}

void Profiles::onProfile(const ServerMessage& message) {
    // Names hold no ":"; the page keeps all of its own.
    const qsizetype colon = message.payload.indexOf(QLatin1Char(':'));
    const QString name = colon < 0 ? message.payload : message.payload.left(colon);
    const QString page = colon < 0 ? QString() : message.payload.mid(colon + 1);
    if (name.isEmpty()) {
        return;
    }
    if (ownPageWanted_ && name.compare(server_.login().userName(), Qt::CaseInsensitive) == 0) {
        ownPageWanted_ = false;
        emit ownPageArrived(page);
        return;
    }
    emit profileArrived(name, page);
}

}  // namespace tavren
