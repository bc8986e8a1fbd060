#pragma once

#include <QObject>
#include <QString>
#include <QUrl>

#include "web/HttpFetch.h"

class QNetworkAccessManager;

namespace tavren {

// The weather and radio information lookups of the text commands ("/weather " + postal code,
// "/radio") and of the radio player. Each kind runs one lookup at a time (a new one replaces
// the one under way) and answers with one plain-text line for the channel it was asked in.
class WebLookups : public QObject {
    Q_OBJECT
  public:
    explicit WebLookups(QNetworkAccessManager& network, QObject* parent = nullptr);

    // The weather service's address for a postal code: "{code}" in the template is replaced;
    // without one the code is appended. Invalid when the template is not a web address.
    static QUrl weatherAddress(const QString& endpoint, const QString& postalCode);
    // Where a station's information is: the configured address, else its server's status page.
    static QUrl radioInfoAddress(const QString& endpoint, const QString& station);

    void lookUpWeather(const QString& endpoint, const QString& postalCode, const QString& channel);
    void lookUpRadio(const QString& endpoint, const QString& station, const QString& channel);

    // For tests: shorter deadlines.
    void setTimeout(int ms);

  signals:
    // `ok` false: `text` says why the lookup failed. `channel` is where it was asked (empty
    // when asked from the radio player).
    void weatherAnswered(const QString& channel, const QString& text, bool ok);
    void radioAnswered(const QString& channel, const QString& text, bool ok);

  private:
    HttpFetch weather_;
    HttpFetch radio_;
    QString weatherChannel_;
    QString weatherCode_;
    QString radioChannel_;
    QUrl radioStation_;
};

}  // namespace tavren
