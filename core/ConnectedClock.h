#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

namespace tavren {

// The main window's connected-time display: days, hours, minutes and seconds as four two-digit
// parts ("00:00:00:00"), reset when the link comes up and advanced once a second while it lasts.
class ConnectedClock : public QObject {
    Q_OBJECT
  public:
    explicit ConnectedClock(QObject* parent = nullptr);

    void start();  // reset to zero and run
    void stop();   // freeze the shown time
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
