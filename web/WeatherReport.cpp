#include "web/WeatherReport.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>
#include <cmath>

namespace tavren {

namespace {

// Long texts from a service are cut: a line in a channel is no place for a page.
constexpr int kLongestText = 80;

QJsonObject firstObject(const QJsonObject& parent, const char* key) {
    const QJsonArray list = parent.value(QLatin1String(key)).toArray();
    return list.isEmpty() ? QJsonObject() : list.first().toObject();
}

// wttr.in wraps texts as [{"value": "..."}].
QString wrappedText(const QJsonObject& parent, const char* key) {
    const QJsonValue value = parent.value(QLatin1String(key));
    QString text = value.isString()
                       ? value.toString()
                       : firstObject(parent, key).value(QLatin1String("value")).toString();
    text = text.simplified();
    return text.left(kLongestText);
}

std::optional<double> number(const QJsonObject& parent, const char* key) {
    const QJsonValue value = parent.value(QLatin1String(key));
    if (value.isDouble()) {
        return std::isfinite(value.toDouble()) ? std::optional<double>(value.toDouble())
                                               : std::nullopt;
    }
    bool ok = false;
    const double parsed = value.toString().trimmed().toDouble(&ok);
    if (!ok || !std::isfinite(parsed) || std::abs(parsed) > 1e6) {
        return std::nullopt;
    }
    return parsed;
}

QString whole(double value) {
    return QString::number(std::lround(value));
}

}  // namespace

std::optional<WeatherReport> WeatherReport::parse(const QByteArray& json) {
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject()) {
        return std::nullopt;
    }
    const QJsonObject root = document.object();
    const QJsonObject now = firstObject(root, "current_condition");
    WeatherReport report;
    report.description = wrappedText(now, "weatherDesc");
    report.celsius = number(now, "temp_C");
    report.fahrenheit = number(now, "temp_F");
    if (const auto humidity = number(now, "humidity");
        humidity && *humidity >= 0 && *humidity <= 100) {
        report.humidity = int(std::lround(*humidity));
    }
    report.windKmh = number(now, "windspeedKmph");
    report.windDirection = wrappedText(now, "winddir16Point").left(4);
    const QJsonObject area = firstObject(root, "nearest_area");
    QStringList place;
    for (const char* part : {"areaName", "region", "country"}) {
        const QString text = wrappedText(area, part);
        if (!text.isEmpty() && !place.contains(text)) {
            place << text;
        }
    }
    report.place = place.join(QStringLiteral(", "));
    if (report.description.isEmpty() && !report.celsius && !report.fahrenheit) {
        return std::nullopt;
    }
    return report;
}

QString WeatherReport::line() const {
    QStringList parts;
    if (!description.isEmpty()) {
        parts << description;
    }
    if (celsius && fahrenheit) {
        parts << QStringLiteral("%1\u00B0C (%2\u00B0F)").arg(whole(*celsius), whole(*fahrenheit));
    } else if (celsius) {
        parts << QStringLiteral("%1\u00B0C").arg(whole(*celsius));
    } else if (fahrenheit) {
        parts << QStringLiteral("%1\u00B0F").arg(whole(*fahrenheit));
    }
    if (humidity) {
        parts << QStringLiteral("humidity %1%").arg(*humidity);
    }
    if (windKmh) {
        QString wind = QStringLiteral("wind %1 km/h").arg(whole(*windKmh));
        if (!windDirection.isEmpty()) {
            wind += QLatin1Char(' ') + windDirection;
        }
        parts << wind;
    }
    const QString weather = parts.join(QStringLiteral(", "));
    return place.isEmpty() ? weather : place + QStringLiteral(": ") + weather;
}

}  // namespace tavren
