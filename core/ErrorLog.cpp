#include "core/ErrorLog.h"

namespace tavren {

ErrorLog::ErrorLog(QObject* parent)
    : QObject(parent),
      heading_(QStringLiteral("Tavren Error Message: ")),
      clock_([] { return QTime::currentTime(); }) {}

QString ErrorLog::formatLine(const QTime& time, const QString& message) {
    const int hour12 = time.hour() % 12 == 0 ? 12 : time.hour() % 12;
    const QString stamp = QStringLiteral("%1:%2:%3 %4")
                              .arg(hour12)
                              .arg(time.minute(), 2, 10, QLatin1Char('0'))
                              .arg(time.second(), 2, 10, QLatin1Char('0'))
                              .arg(time.hour() < 12 ? QLatin1String("AM") : QLatin1String("PM"));
    return QLatin1Char('(') + stamp + QStringLiteral(") ~ ") + message + QStringLiteral("\r\n");
}

void ErrorLog::ShowErrorMessage(const QString& message, const QString& title, Show show) {
    if (show == Show::Forward) {
        emit shown();
    }
    if (!title.isEmpty()) {
        heading_ = QStringLiteral("Tavren Error Message: ") + title;
        emit headingChanged(heading_);
    }
    if (text_.size() > kMaxLength) {
        // Cut at a line start so that no line is left half-stamped.
        const qsizetype cut = text_.indexOf(QLatin1Char('\n'), text_.size() - kTrimmedLength);
        text_ = cut < 0 ? QString() : text_.mid(cut + 1);
    }
    const int caret = static_cast<int>(text_.size());
    text_ += formatLine(clock_(), message);
    emit textChanged(text_, caret);
}

void ErrorLog::clear() {
    text_.clear();
    emit textChanged(text_, 0);
}

}  // namespace tavren
