#include "pm/TransferProgress.h"

#include <cmath>

namespace tavren {

void TransferProgress::start(qint64 total, qint64 nowMs) {
    total_ = total;
    done_ = 0;
    startMs_ = nowMs;
    finalRate_ = -1;
    samples_.clear();
    samples_.emplace_back(nowMs, 0);
}

void TransferProgress::update(qint64 done, qint64 nowMs) {
    done_ = done;
    samples_.emplace_back(nowMs, done);
    // Keep one sample at or before the window's start, so the rate always spans the window.
    while (samples_.size() > 2 && samples_[1].first <= nowMs - kRateWindowMs) {
        samples_.pop_front();
    }
}

void TransferProgress::finish(qint64 nowMs) {
    update(total_, nowMs);
    // At least a millisecond: a file that went within one still went at some rate.
    finalRate_ = static_cast<double>(total_) * 1000.0 /
                 static_cast<double>(qMax<qint64>(1, nowMs - startMs_));
}

double TransferProgress::bytesPerSecond() const {
    if (finalRate_ >= 0) {
        return finalRate_;
    }
    if (samples_.size() < 2) {
        return 0;
    }
    const auto& [firstTime, firstDone] = samples_.front();
    const auto& [lastTime, lastDone] = samples_.back();
    if (lastTime <= firstTime) {
        return 0;
    }
    return static_cast<double>(lastDone - firstDone) * 1000.0 /
           static_cast<double>(lastTime - firstTime);
}

QString TransferProgress::twoDigits(double value) {
    QString text = QString::number(value, 'f', 2);
    // At least two digits before the point: "5.25" becomes "05.25".
    if (text.indexOf(QLatin1Char('.')) < 2) {
        text.prepend(QLatin1Char('0'));
    }
    return text;
}

QString TransferProgress::timeLeft(qint64 remainingBytes, double bytesPerSecond) {
    if (bytesPerSecond <= 0) {
        return remainingBytes <= 0 ? QStringLiteral("0:00") : QStringLiteral("-:--");
    }
    const auto seconds = static_cast<qint64>(
        std::ceil(static_cast<double>(qMax<qint64>(0, remainingBytes)) / bytesPerSecond));
    const qint64 hours = seconds / 3600;
    const qint64 minutes = seconds / 60 % 60;
    const QString rest = QStringLiteral("%1").arg(seconds % 60, 2, 10, QLatin1Char('0'));
    if (hours > 0) {
        return QStringLiteral("%1:%2:%3")
            .arg(hours)
            .arg(minutes, 2, 10, QLatin1Char('0'))
            .arg(rest);
    }
    return QStringLiteral("%1:%2").arg(minutes).arg(rest);
}

QString TransferProgress::label(qint64 done, qint64 total, double bytesPerSecond) {
    const double percent =
        total > 0 ? 100.0 * static_cast<double>(done) / static_cast<double>(total) : 0.0;
    return twoDigits(percent) + QStringLiteral("% ~ ") + twoDigits(bytesPerSecond / 1024.0) +
           QStringLiteral(" KB/s ~ ") + QString::number(done) + QStringLiteral(" of ") +
           QString::number(total) + QStringLiteral(" (") + timeLeft(total - done, bytesPerSecond) +
           QLatin1Char(')');
}

}  // namespace tavren
