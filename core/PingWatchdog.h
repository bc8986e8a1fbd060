#pragma once

#include <QObject>
#include <QTimer>

namespace tavren {

// Declares the server link dead when pings stop (the main window's TimerPinged). The server
// pings every few seconds; each tick without one counts, and the fifth silent tick in a row
// stops the watchdog and reports the time-out once.
class PingWatchdog : public QObject {
    Q_OBJECT
  public:
    static constexpr int kSilentTicks = 5;

    explicit PingWatchdog(int intervalMs, QObject* parent = nullptr);

    void start();  // counter to zero, ticking
    void stop();
    bool running() const { return timer_.isActive(); }
    int silentTicks() const { return silentTicks_; }

    // A ping arrived: the link is alive.
    void pingArrived();
    // One interval passed; public so that tests need not wait for the timer.
    void tick();

  signals:
    void timedOut();

  private:
    QTimer timer_;
    int silentTicks_ = 0;
};

}  // namespace tavren
