#include "web/WebServices.h"

#include "config/Settings.h"
#include "rooms/RoomSession.h"

namespace tavren {

namespace {
// The colours of the client's own notices in channels (as for "/invite").
constexpr WinColor kServiceNameColor = 0x804000;  // dark blue
constexpr WinColor kServiceTextColor = 0x404040;
constexpr WinColor kFailureTextColor = 128;  // dark red
}  // namespace

WebServices::WebServices(Settings& settings, ServerSession& server, RoomSession& rooms,
                         QObject* parent)
    : QObject(parent),
      settings_(settings),
      rooms_(rooms),
      network_(this),
      lookups_(network_, this),
      radio_(settings, this),
      news_(server, this) {
    connect(&lookups_, &WebLookups::weatherAnswered, this,
            [this](const QString& channel, const QString& text, bool ok) {
                showInChannel(channel, QStringLiteral("Weather: "), text, ok);
            });
    connect(&lookups_, &WebLookups::radioAnswered, this,
            [this](const QString& channel, const QString& text, bool ok) {
                if (!channel.isEmpty()) {
                    showInChannel(channel, QStringLiteral("Radio: "), text, ok);
                }
            });
}

void WebServices::lookUpWeather(const QString& channel, const QString& postalCode) {
    lookups_.lookUpWeather(settings_.values().weatherUrl, postalCode, channel);
}

void WebServices::lookUpRadio(const QString& channel) {
    const SettingsValues& values = settings_.values();
    lookups_.lookUpRadio(values.radioInfoUrl, values.radioStation, channel);
}

QString WebServices::radioInfoEndpoint() const {
    return settings_.values().radioInfoUrl;
}

void WebServices::showInChannel(const QString& channel, const QString& label, const QString& text,
                                bool ok) {
    // The channel may have closed while the service was asked; then the line goes to the one
    // in front, and nowhere when none is open.
    int room = rooms_.roomIndex(channel);
    if (room < 0) {
        room = rooms_.selected();
    }
    if (room < 0 || room >= rooms_.count()) {
        return;
    }
    // What a web service says is text, never markup.
    rooms_.showLine(room, label, text.toHtmlEscaped(), kServiceNameColor,
                    ok ? kServiceTextColor : kFailureTextColor);
}

}  // namespace tavren
