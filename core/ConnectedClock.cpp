#include "core/ConnectedClock.h"

namespace tavren {

ConnectedClock::ConnectedClock(QObject* parent) : QObject(parent) {
    timer_.setInterval(1000);
    connect(&timer_, &QTimer::timeout, this, &ConnectedClock::tick);
}

void ConnectedClock::start() {
    seconds_ = 0;
    timer_.start();
    emit textChanged(text());
}

void ConnectedClock::stop() {
    timer_.stop();
}

void ConnectedClock::reset() {
    timer_.stop();
    if (seconds_ != 0) {
        seconds_ = 0;
        emit textChanged(text());
    }
}

void ConnectedClock::tick() {
    ++seconds_;
    emit textChanged(text());
}

QString ConnectedClock::format(qint64 seconds) {
    const qint64 days = seconds / 86400;
    const auto twoDigits = [](qint64 value) {
        return QStringLiteral("%1").arg(value, 2, 10, QLatin1Char('0'));
    };
    // Past 99 days the day part simply grows wider rather than wrapping.
    return twoDigits(days) + QLatin1Char(':') + twoDigits(seconds / 3600 % 24) + QLatin1Char(':') +
           twoDigits(seconds / 60 % 60) + QLatin1Char(':') + twoDigits(seconds % 60);
}

}  // namespace tavren
