#include "core/AwayStatus.h"

#include "core/ServerLink.h"
#include "core/protocol/Catalogue.h"
#include "core/protocol/Fields.h"

namespace tavren {

AwayStatus::AwayStatus(ServerLink& link, QObject* parent) : QObject(parent), link_(link) {}

void AwayStatus::goAway(const QString& text) {
    link_.SendPacket(QStringLiteral("/away ") + text, protocol::client_to_server::kAwayStatus);
}

void AwayStatus::comeBack() {
    link_.SendPacket(QStringLiteral("/back"), protocol::client_to_server::kAwayStatus);
}

void AwayStatus::reset() {
    const bool wasAway = away_;
    away_ = false;
    message_.clear();
    if (wasAway) {
        emit changed(false);
    }
}

void AwayStatus::onAwayState(const ServerMessage& message) {
    const qsizetype separator = message.payload.indexOf(QLatin1Char(';'));
    const QString flag = separator < 0 ? message.payload : message.payload.left(separator);
    away_ = flag == QLatin1String(protocol::kTrueText.data(), protocol::kTrueText.size());
    message_ = separator < 0 ? QString() : message.payload.mid(separator + 1);
    emit changed(away_);
}

}  // namespace tavren
