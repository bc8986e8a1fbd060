#include "render/ChatTime.h"

namespace tavren {

namespace {

// "H:MM:SS" on a 12-hour clock (midnight and noon are 12), then the day half.
QString twelveHourTime(const QTime& time, QLatin1String morning, QLatin1String afternoon) {
    if (!time.isValid()) {
        return {};
    }
    const int hour = time.hour();
    const int shownHour = hour % 12 == 0 ? 12 : hour % 12;
    QString text;
    text.reserve(11);
    text += QString::number(shownHour);
    text += QLatin1Char(':');
    text += QLatin1Char(char('0' + time.minute() / 10));
    text += QLatin1Char(char('0' + time.minute() % 10));
    text += QLatin1Char(':');
    text += QLatin1Char(char('0' + time.second() / 10));
    text += QLatin1Char(char('0' + time.second() % 10));
    text += hour < 12 ? morning : afternoon;
    return text;
}

}  // namespace

QString RoomLineTime(const QTime& time) {
    return twelveHourTime(time, QLatin1String("am"), QLatin1String("pm"));
}

QString PaneLineTime(const QTime& time) {
    return twelveHourTime(time, QLatin1String(" AM"), QLatin1String(" PM"));
}

}  // namespace tavren
