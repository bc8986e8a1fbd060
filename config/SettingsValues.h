#pragma once

#include <QString>
#include <QStringList>
#include <array>

#include "config/ColorScheme.h"
#include "config/SoundSlots.h"

namespace tavren {

// Every preference the settings window edits, as plain typed values. The window works on a copy
// and hands it back on OK, so nothing the user tries out reaches the rest of the client before
// it is committed. Each member's default is the one a fresh installation starts with.
struct SettingsValues {
    static constexpr int AutoScrollMin = 1;
    static constexpr int AutoScrollMax = 15;
    static constexpr int TransLevelMin = 0;
    static constexpr int TransLevelMax = 80;
    static constexpr int PortMin = 1;
    static constexpr int PortMax = 65535;

    static QString defaultServerHost() { return QStringLiteral("{default server #1}"); }
    static QString defaultServerPort() { return QStringLiteral("{Default Port}"); }
    static QStringList defaultServerHostChoices();
    static QStringList defaultServerPortChoices() { return {defaultServerPort()}; }

    // The defaults, with the sound slots pointing into `dataRoot`'s "sounds" folder.
    static SettingsValues defaults(const QString& dataRoot);

    // Chat-line look.
    bool underline = false;  // nicknames underlined
    bool bold = true;        // nicknames bold
    // Window surfaces and the six nickname/message colours ("color5" .. "color10").
    ColorScheme colors = ColorScheme::defaults();
    QString scheme;  // name of the colour scheme last applied

    // Proxy tunnel.
    bool useProxy = false;
    QString proxyHost;
    QString proxyPort = QStringLiteral("80");  // text: the connection checks it is numeric

    // Server. The choices are the entries of the server and port drop-downs.
    QString serverHost = defaultServerHost();
    QStringList serverHostChoices = defaultServerHostChoices();
    QString serverPort = defaultServerPort();
    QStringList serverPortChoices = defaultServerPortChoices();
    // The connection to the server is encrypted (TLS); off only for servers that cannot.
    bool tls = true;

    // Windows.
    bool trans = false;  // windows drawn translucent
    int transLevel = 20;
    int autoScroll = 3;  // chat panes follow new lines more readily the higher it is

    // Behaviour.
    bool autoLogin = false;
    bool autoReconnect = true;
    bool autoStart = false;
    bool autoJoin = true;  // run the perform list after sign-on
    bool autoAccept = false;
    bool tunnel = false;  // behind a firewall: direct connections are set up the other way round
    bool timestamp = true;
    bool smiles = true;
    // Desktop notices (the tray's messages) for private messages and buddies while the
    // window they belong to is not in front.
    bool notify = true;
    bool ignorePms = false;
    bool ignoreMotd = false;
    int lowerRange = 2000;  // local ports for direct connections and file transfers
    int upperRange = 2100;

    // Web services: the weather service's address ("{code}" stands for the postal code), the
    // radio station's stream and where its "now playing" information is (empty: the status page
    // of the station's own server).
    static QString defaultWeatherUrl() {
        return QStringLiteral("https://wttr.in/{code}?format=j1");
    }
    static QString defaultRadioStation() {
        return QStringLiteral("https://ice1.somafm.com/groovesalad-128-mp3");
    }
    QString weatherUrl = defaultWeatherUrl();
    QString radioStation = defaultRadioStation();
    QString radioInfoUrl;
    int radioVolume = 70;  // percent, set by the player itself

    // Event sounds: the master switch and each slot's file or SoundSlots::disabledText().
    bool playSounds = true;
    std::array<QString, SoundSlots::Count> sounds;

    WinColor color(ColorScheme::Field field) const { return colors.color(field); }
    // The opacity windows should use: 1 when translucency is off.
    double windowOpacity() const { return trans ? 1.0 - transLevel / 100.0 : 1.0; }

    bool operator==(const SettingsValues&) const = default;
};

}  // namespace tavren
