#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

namespace tavren {

// The main window's connected-time display: days, hours, minutes and seconds as four two-digit
// parts ("00:00:00:00"), reset when the link comes up, advanced once a second while it lasts and
// back at zero once the client is offline, so a stale time is never shown.
class ConnectedClock : public QObject {
    Q_OBJECT
  public:
    explicit ConnectedClock(QObject* parent = nullptr);

    void start();  // reset to zero and run
    void stop();   // freeze the shown time
    void reset();  // stop at zero
    bool running() const { return timer_.isActive(); }
    qint64 seconds() const { return seconds_; }
    QString text() const { return format(seconds_); }

    static QString format(qint64 seconds);

    // Advances by one second, as the timer does; public so that tests need not wait.
    void tick();

  signals:
    void textChanged(const QString& text);

  private:
    QTimer timer_;
    qint64 seconds_ = 0;
};

}  // namespace tavren
