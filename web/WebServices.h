#pragma once

#include <QNetworkAccessManager>
#include <QObject>
#include <QString>

#include "web/NewsFeed.h"
#include "web/RadioPlayer.h"
#include "web/WebLookups.h"

namespace tavren {

class RoomSession;
class ServerSession;
class Settings;

// The client's web services in one place: the weather and radio lookups, whose answers become
// lines in the channel they were asked in, the radio player and the server's news.
class WebServices : public QObject {
    Q_OBJECT
  public:
    WebServices(Settings& settings, ServerSession& server, RoomSession& rooms,
                QObject* parent = nullptr);

    // "/weather " + postal code and "/radio" typed in `channel`; the answer goes there.
    void lookUpWeather(const QString& channel, const QString& postalCode);
    void lookUpRadio(const QString& channel);

    // Where the configured station's "now playing" information is (empty: its own server).
    QString radioInfoEndpoint() const;

    WebLookups& lookups() { return lookups_; }
    RadioPlayer& radio() { return radio_; }
    NewsFeed& news() { return news_; }
    QNetworkAccessManager& network() { return network_; }

  private:
    void showInChannel(const QString& channel, const QString& label, const QString& text, bool ok);

    Settings& settings_;
    RoomSession& rooms_;
    QNetworkAccessManager network_;
    WebLookups lookups_;
    RadioPlayer radio_;
    NewsFeed news_;
};

}  // namespace tavren
