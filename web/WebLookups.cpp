#include "web/WebLookups.h"

#include "web/RadioInfo.h"
#include "web/WeatherReport.h"

namespace tavren {

WebLookups::WebLookups(QNetworkAccessManager& network, QObject* parent)
    : QObject(parent), weather_(network, this), radio_(network, this) {
    connect(
        &weather_, &HttpFetch::finished, this,
        [this](const QByteArray& body, const QString& error) {
            const QString what = tr("The weather for %1").arg(weatherCode_);
            if (!error.isEmpty()) {
                emit weatherAnswered(weatherChannel_,
                                     tr("%1 could not be looked up: %2.").arg(what, error), false);
                return;
            }
            const auto report = WeatherReport::parse(body);
            if (!report) {
                emit weatherAnswered(
                    weatherChannel_,
                    tr("%1 could not be looked up: the service's answer was not a weather "
                       "report.")
                        .arg(what),
                    false);
                return;
            }
            emit weatherAnswered(weatherChannel_,
                                 report->line() + QStringLiteral(" (%1)").arg(weatherCode_), true);
        });
    connect(&radio_, &HttpFetch::finished, this,
            [this](const QByteArray& body, const QString& error) {
                if (!error.isEmpty()) {
                    emit radioAnswered(
                        radioChannel_,
                        tr("The radio information could not be looked up: %1.").arg(error), false);
                    return;
                }
                const auto info = RadioInfo::parse(body, radioStation_);
                if (!info) {
                    emit radioAnswered(radioChannel_,
                                       tr("The radio information could not be looked up: the "
                                          "station's answer names no stream on the air."),
                                       false);
                    return;
                }
                emit radioAnswered(radioChannel_, info->line(), true);
            });
}

QUrl WebLookups::weatherAddress(const QString& endpoint, const QString& postalCode) {
    const QString code = QString::fromLatin1(QUrl::toPercentEncoding(postalCode));
    QString address = endpoint.trimmed();
    if (address.contains(QLatin1String("{code}"))) {
        address.replace(QLatin1String("{code}"), code);
    } else {
        address += code;
    }
    const QUrl url(address, QUrl::StrictMode);
    return HttpFetch::isWebAddress(url) ? url : QUrl();
}

QUrl WebLookups::radioInfoAddress(const QString& endpoint, const QString& station) {
    if (!endpoint.trimmed().isEmpty()) {
        const QUrl url(endpoint.trimmed(), QUrl::StrictMode);
        return HttpFetch::isWebAddress(url) ? url : QUrl();
    }
    const QUrl stream(station.trimmed(), QUrl::StrictMode);
    return HttpFetch::isWebAddress(stream) ? RadioInfo::statusPageOf(stream) : QUrl();
}

void WebLookups::lookUpWeather(const QString& endpoint, const QString& postalCode,
                               const QString& channel) {
    weatherChannel_ = channel;
    weatherCode_ = postalCode;
    const QUrl url = weatherAddress(endpoint, postalCode);
    if (!url.isValid()) {
        weather_.abandon();
        emit weatherAnswered(channel,
                             tr("The weather for %1 could not be looked up: the weather service's "
                                "address in the settings is not an http or https address.")
                                 .arg(postalCode),
                             false);
        return;
    }
    weather_.get(url);
}

void WebLookups::lookUpRadio(const QString& endpoint, const QString& station,
                             const QString& channel) {
    radioChannel_ = channel;
    radioStation_ = QUrl(station.trimmed());
    const QUrl url = radioInfoAddress(endpoint, station);
    if (!url.isValid()) {
        radio_.abandon();
        emit radioAnswered(channel,
                           tr("The radio information could not be looked up: the station's "
                              "address in the settings is not an http or https address."),
                           false);
        return;
    }
    radio_.get(url);
}

void WebLookups::setTimeout(int ms) {
    weather_.setTimeout(ms);
    radio_.setTimeout(ms);
}

}  // namespace tavren
