#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

namespace tavren {

// The weather at one place, read from the JSON answer of the weather service (the layout of
// wttr.in's "format=j1": current_condition[0] with temp_C, temp_F, humidity, windspeedKmph,
// winddir16Point and weatherDesc[0].value; nearest_area[0] with areaName, region and country).
// Numbers may come as JSON numbers or as text. Everything is read defensively: a field of the
// wrong kind is left out, and an answer without a temperature or description is no report.
struct WeatherReport {
    QString place;        // "Beverly Hills, California, United States of America"
    QString description;  // "Partly cloudy"
    std::optional<double> celsius;
    std::optional<double> fahrenheit;
    std::optional<int> humidity;  // percent
    std::optional<double> windKmh;
    QString windDirection;  // "WSW"

    static std::optional<WeatherReport> parse(const QByteArray& json);

    // One line for a channel, as plain text: "Beverly Hills, California: Partly cloudy, 18°C
    // (64°F), humidity 72%, wind 11 km/h WSW".
    QString line() const;
};

}  // namespace tavren
