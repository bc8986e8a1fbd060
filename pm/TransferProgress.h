#pragma once

#include <QString>
#include <QtGlobal>
#include <deque>
#include <utility>

namespace tavren {

// How far one transfer has come, how fast it goes, and the label under its progress bar:
//
//   "05.25% ~ 0512.00 KB/s ~ 1048576 of 19972004 (0:36)"
//
// the share done and the rate both at least two digits before the point and two after it, the
// bytes done and the total, and in the parentheses the time still needed at the present rate
// ("m:ss", "h:mm:ss" from an hour on, "-:--" while no rate is known).
class TransferProgress {
  public:
    // The rate is taken over about this long, so that it follows changes without jumping.
    static constexpr qint64 kRateWindowMs = 3000;

    void start(qint64 total, qint64 nowMs);
    void update(qint64 done, qint64 nowMs);
    // All is done: from now on the rate is the average over the whole transfer (a small file's
    // last few milliseconds say nothing).
    void finish(qint64 nowMs);

    qint64 done() const { return done_; }
    qint64 total() const { return total_; }
    double bytesPerSecond() const;
    QString label() const { return label(done_, total_, bytesPerSecond()); }

    static QString label(qint64 done, qint64 total, double bytesPerSecond);
    // "##00.00": two decimals, at least two digits before the point.
    static QString twoDigits(double value);
    static QString timeLeft(qint64 remainingBytes, double bytesPerSecond);

  private:
    qint64 total_ = 0;
    qint64 done_ = 0;
    std::deque<std::pair<qint64, qint64>> samples_;  // (time, done), oldest first
    qint64 startMs_ = 0;
    double finalRate_ = -1;  // set by finish()
};

}  // namespace tavren
