#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QThread>
#include <functional>

namespace tavren::test {

// Runs the event loop until `done` holds or the bound passes. The bound only keeps a broken
// build from hanging; nothing here measures time.
inline bool waitUntil(const std::function<bool()>& done, int boundMs = 15000) {
    QDeadlineTimer deadline(boundMs);
    while (!done()) {
        if (deadline.hasExpired()) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QThread::msleep(2);
    }
    return true;
}

// Lets the event loop run for a while (to show that something does NOT happen).
inline void runEventsFor(int ms) {
    waitUntil([] { return false; }, ms);
}

}  // namespace tavren::test
