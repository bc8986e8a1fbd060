#pragma once

#include <QObject>
#include <QString>
#include <QTime>
#include <functional>

namespace tavren {

// The error window's log, kept without widgets: what went wrong with the connection, what the
// server refused, each line stamped with the local time. The window (ChatError) only shows it.
class ErrorLog : public QObject {
    Q_OBJECT
  public:
    // Enough for days of reconnect attempts; older lines go first.
    static constexpr int kMaxLength = 200000;
    static constexpr int kTrimmedLength = 150000;

    explicit ErrorLog(QObject* parent = nullptr);

    // Whether a new line brings the window forward. A connection that is putting itself right
    // (the auto-reconnect countdown is running) writes its lines quietly: the member can read
    // them there, but nothing jumps up for a trouble that goes away by itself.
    enum class Show { Forward, Quietly };

    // The one writer of the log: shows the window (unless quietly), sets its heading when a
    // title is given and appends "(H:MM:SS AM/PM) ~ message" and CR LF.
    void ShowErrorMessage(const QString& message, const QString& title = QString(),
                          Show show = Show::Forward);
    void clear();

    QString text() const { return text_; }
    QString heading() const { return heading_; }

    // "(3:07:09 PM) ~ message" and CR LF, whatever the user's locale.
    static QString formatLine(const QTime& time, const QString& message);
    // Tests fix the clock.
    void setClock(std::function<QTime()> clock) { clock_ = std::move(clock); }

  signals:
    // The window should show itself and come forward.
    void shown();
    void headingChanged(const QString& heading);
    // The whole text changed (a line appended, old lines dropped, cleared); the caret belongs
    // at `caret`, the start of the newest line.
    void textChanged(const QString& text, int caret);

  private:
    QString text_;
    QString heading_;
    std::function<QTime()> clock_;
};

}  // namespace tavren
