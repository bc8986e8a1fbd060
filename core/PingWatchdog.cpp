#include "core/PingWatchdog.h"

namespace tavren {

PingWatchdog::PingWatchdog(int intervalMs, QObject* parent) : QObject(parent) {
    timer_.setObjectName(QStringLiteral("TimerPinged"));
    timer_.setInterval(intervalMs);
    connect(&timer_, &QTimer::timeout, this, &PingWatchdog::tick);
}

void PingWatchdog::start() {
    silentTicks_ = 0;
    timer_.start();
}

void PingWatchdog::stop() {
    timer_.stop();
    silentTicks_ = 0;
}

void PingWatchdog::pingArrived() {
    silentTicks_ = 0;
    if (!timer_.isActive()) {
        timer_.start();
    }
}

void PingWatchdog::tick() {
    if (++silentTicks_ < kSilentTicks) {
        return;
    }
    silentTicks_ = 0;
    timer_.stop();
    emit timedOut();
}

}  // namespace tavren
