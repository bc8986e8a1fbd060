#include "rooms/ChannelCreation.h"

#include "core/ServerLink.h"
#include "core/protocol/Catalogue.h"

namespace tavren {

namespace {
constexpr int kMinNameLength = 6;
}  // namespace

ChannelCreation::ChannelCreation(ServerLink& link, QObject* parent) : QObject(parent), link_(link) {
    timer_.setInterval(kStepMs);
    connect(&timer_, &QTimer::timeout, this, &ChannelCreation::step);
}

QString ChannelCreation::check(const QString& name, bool passwordOn, const QString& password) {
    if (passwordOn && password.isEmpty()) {
        return QStringLiteral("Please enter a password or un-select the password option!");
    }
    if (name.contains(QLatin1Char(':')) || name.contains(QLatin1Char(';'))) {
        return QStringLiteral("Channel Name Can't Contain {:} or (;) Characters!");
    }
    if (name.size() < kMinNameLength) {
        return QStringLiteral("Channel Name must be greater then 5 Characters!");
    }
    if (passwordOn && password.contains(QLatin1Char(':'))) {
        return QStringLiteral("Channel Password Can't Contain {:} Characters!");
    }
    return {};
}

bool ChannelCreation::start(const QString& name, const QString& topic, bool passwordOn,
                            const QString& password, QString* problem) {
    if (running()) {
        return false;
    }
    const QString why = check(name, passwordOn, password);
    if (problem != nullptr) {
        *problem = why;
    }
    if (!why.isEmpty()) {
        return false;
    }
    payload_ = name.trimmed() + QLatin1Char(':') + (passwordOn ? password : QString()) +
               QLatin1Char(':') + topic.trimmed();
    step_ = 0;
    emit progress(0, QStringLiteral("Creating...(0%)"));
    timer_.start();
    return true;
}

void ChannelCreation::step() {
    if (++step_ <= kLastStep) {
        emit progress(step_ * 2, QStringLiteral("Creating...(%1%)").arg(step_));
        return;
    }
    timer_.stop();
    link_.SendPacket(payload_, protocol::client_to_server::kCreateRoom);
    emit finished();
}

}  // namespace tavren
