#include "config/Settings.h"

#include "config/AutostartRegistrar.h"
#include "config/SchemeLibrary.h"
#include "config/SettingsStore.h"
#include "config/StoredValue.h"

namespace tavren {

namespace {

const QString general = QString::fromLatin1(SettingsStore::General);

}  // namespace

Settings::Settings(SettingsStore& store, const QString& dataRoot, AutostartRegistrar* autostart,
                   QObject* parent)
    : QObject(parent),
      store_(store),
      dataRoot_(dataRoot),
      autostart_(autostart),
      values_(SettingsValues::defaults(dataRoot)) {}

void Settings::setValues(const SettingsValues& values) {
    values_ = values;
    emit changed();
}

// An absent key reads as empty text, which no parser accepts, so absent and unreadable values
// both keep their default.
bool Settings::readFlag(const char* section, const char* key, bool fallback) const {
    const QString text = store_.value(QString::fromLatin1(section), QString::fromLatin1(key));
    return StoredValue::parseFlag(text).value_or(fallback);
}

int Settings::readInt(const char* key, int fallback, int minimum, int maximum) const {
    const QString text = store_.value(general, QString::fromLatin1(key));
    return StoredValue::parseInt(text, minimum, maximum).value_or(fallback);
}

WinColor Settings::readColor(const QString& key, WinColor fallback) const {
    return StoredValue::parseColor(store_.value(general, key)).value_or(fallback);
}

QString Settings::readText(const char* section, const char* key, const QString& fallback) const {
    return store_.value(QString::fromLatin1(section), QString::fromLatin1(key), fallback);
}

QString Settings::selectOrAdd(QStringList& entries, const QString& value) {
    for (const QString& entry : entries) {
        if (entry.compare(value, Qt::CaseInsensitive) == 0) {
            return entry;
        }
    }
    if (!value.isEmpty()) {
        entries << value;
    }
    return value;
}

// The order follows the old client's start-up, which other code relied on: the reconnect flag
// is armed before anything else and only then taken from the stored choice.
void Settings::load() {
    using SV = SettingsValues;
    const char* G = SettingsStore::General;
    const char* S = SettingsStore::Sounds;
    SettingsValues v = SettingsValues::defaults(dataRoot_);
    autoReconnectArmed_ = true;

    v.underline = readFlag(G, "underline", v.underline);
    v.bold = readFlag(G, "bold", v.bold);
    for (int field = ColorScheme::TheirNick; field <= ColorScheme::OwnText; ++field) {
        const auto f = ColorScheme::Field(field);
        v.colors.setColor(f, readColor(ColorScheme::messageKey(f), v.color(f)));
    }
    v.proxyPort = readText(G, "proxyport", v.proxyPort);
    v.proxyHost = readText(G, "proxyhost", v.proxyHost);

    v.transLevel = readInt("Translevel", v.transLevel, SV::TransLevelMin, SV::TransLevelMax);
    v.trans = readFlag(G, "Trans", v.trans);

    showAds_ = readFlag(G, "ShowAds", true);
    showTools_ = readFlag(G, "ShowTools", true);

    v.useProxy = readFlag(G, "useproxy", v.useProxy);
    v.tls = readFlag(G, "tls", v.tls);
    nickname_ = store_.value(general, nicknameKey());
    v.autoLogin = readFlag(G, "autologin", v.autoLogin);
    v.autoScroll = readInt("AutoScroll", v.autoScroll, SV::AutoScrollMin, SV::AutoScrollMax);

    v.playSounds = readFlag(S, "Play", v.playSounds);
    v.timestamp = readFlag(G, "timestamp", v.timestamp);
    v.autoAccept = readFlag(G, "autoaccept", v.autoAccept);
    v.autoJoin = readFlag(G, "autojoin", v.autoJoin);
    v.autoStart = readFlag(G, "autostart", v.autoStart);
    v.tunnel = readFlag(G, "Tunnel", v.tunnel);

    v.serverHost = selectOrAdd(v.serverHostChoices, readText(G, "serverhost", v.serverHost));
    v.serverPort = selectOrAdd(v.serverPortChoices, readText(G, "serverport", v.serverPort));

    v.ignorePms = readFlag(G, "ignorepms", v.ignorePms);
    v.ignoreMotd = readFlag(G, "ignoremotd", v.ignoreMotd);
    v.smiles = readFlag(G, "smiles", v.smiles);
    v.notify = readFlag(G, "notify", v.notify);
    v.autoReconnect = readFlag(G, "autoreconnect", v.autoReconnect);
    autoReconnectArmed_ = v.autoReconnect;
    v.lowerRange = readInt("lower_range", v.lowerRange, SV::PortMin, SV::PortMax);
    v.upperRange = readInt("upper_range", v.upperRange, SV::PortMin, SV::PortMax);

    for (int slot = 0; slot < SoundSlots::Count; ++slot) {
        auto& sound = v.sounds[std::size_t(slot)];
        sound = store_.value(QString::fromLatin1(S), SoundSlots::key(slot), sound);
    }

    v.weatherUrl = readText(G, "weatherurl", v.weatherUrl);
    v.radioStation = readText(G, "radiostation", v.radioStation);
    v.radioInfoUrl = readText(G, "radioinfourl", v.radioInfoUrl);
    v.radioVolume = readInt("radiovolume", v.radioVolume, 0, 100);

    v.scheme = readText(G, "scheme", v.scheme);
    values_ = v;
    applySchemeFile();
    emit changed();
}

// A scheme that has vanished or was damaged since it was chosen is passed over quietly here;
// the user only hears about a bad file when picking it by hand.
void Settings::applySchemeFile() {
    if (values_.scheme.isEmpty()) {
        return;
    }
    if (const auto scheme = SchemeLibrary(dataRoot_).read(values_.scheme)) {
        values_.colors = *scheme;
    }
}

void Settings::write(const char* section, const QString& key, const QString& value) {
    store_.setValue(QString::fromLatin1(section), key, value);
}

void Settings::writeFlag(const char* key, bool on) {
    write(SettingsStore::General, QString::fromLatin1(key), StoredValue::flagText(on));
}

void Settings::writeColor(ColorScheme::Field field) {
    write(SettingsStore::General, ColorScheme::messageKey(field),
          StoredValue::colorText(values_.color(field)));
}

// The order is the old client's: everything up to the reconnect flag, then the start-up
// registration (only if the store took every write so far), then the rest.
bool Settings::save() {
    const char* G = SettingsStore::General;
    const SettingsValues& v = values_;

    for (int field = ColorScheme::TheirNick; field <= ColorScheme::OwnNick; ++field) {
        writeColor(ColorScheme::Field(field));
    }
    writeFlag("autologin", v.autoLogin);
    writeFlag("autojoin", v.autoJoin);
    writeFlag("Tunnel", v.tunnel);
    writeFlag("smiles", v.smiles);
    writeFlag("notify", v.notify);
    writeFlag("ignorepms", v.ignorePms);
    writeFlag("ignoremotd", v.ignoreMotd);
    writeFlag("timestamp", v.timestamp);
    writeFlag("autoaccept", v.autoAccept);
    writeFlag("Trans", v.trans);
    writeFlag("autostart", v.autoStart);
    writeFlag("autoreconnect", v.autoReconnect);
    write(G, QStringLiteral("scheme"), v.scheme);
    write(G, QStringLiteral("lower_range"), StoredValue::intText(v.lowerRange));
    write(G, QStringLiteral("upper_range"), StoredValue::intText(v.upperRange));
    autoReconnectArmed_ = v.autoReconnect;

    bool ok = store_.sync();
    if (ok && autostart_ != nullptr) {
        ok = autostart_->setEnabled(v.autoStart);
    }

    writeColor(ColorScheme::OwnText);
    writeFlag("underline", v.underline);
    writeFlag("bold", v.bold);
    writeFlag("useproxy", v.useProxy);
    writeFlag("tls", v.tls);
    write(G, QStringLiteral("proxyhost"), v.proxyHost);
    write(G, QStringLiteral("proxyport"), v.proxyPort);
    write(G, QStringLiteral("serverhost"), v.serverHost);
    write(G, QStringLiteral("serverport"), v.serverPort);
    write(SettingsStore::Sounds, QStringLiteral("Play"), StoredValue::flagText(v.playSounds));
    write(G, QStringLiteral("AutoScroll"), StoredValue::intText(v.autoScroll));
    write(G, QStringLiteral("Translevel"), StoredValue::intText(v.transLevel));
    for (int slot = 0; slot < SoundSlots::Count; ++slot) {
        write(SettingsStore::Sounds, SoundSlots::key(slot), v.sounds[std::size_t(slot)]);
    }
    write(G, QStringLiteral("weatherurl"), v.weatherUrl);
    write(G, QStringLiteral("radiostation"), v.radioStation);
    write(G, QStringLiteral("radioinfourl"), v.radioInfoUrl);
    return store_.sync() && ok;
}

void Settings::setNickname(const QString& nickname) {
    nickname_ = nickname;
    store_.setValue(general, nicknameKey(), nickname);
    store_.sync();
    emit nicknameChanged(nickname);
}

void Settings::setShowAds(bool shown) {
    showAds_ = shown;
    store_.setValue(general, QStringLiteral("ShowAds"), StoredValue::boolText(shown));
    emit showAdsChanged(shown);
}

void Settings::setShowTools(bool shown) {
    showTools_ = shown;
    store_.setValue(general, QStringLiteral("ShowTools"), StoredValue::boolText(shown));
    emit showToolsChanged(shown);
}

void Settings::setPlaySounds(bool on) {
    values_.playSounds = on;
    store_.setValue(QString::fromLatin1(SettingsStore::Sounds), QStringLiteral("Play"),
                    StoredValue::flagText(on));
    emit changed();
}

void Settings::setRadio(const QString& station, int volume) {
    values_.radioStation = station;
    values_.radioVolume = volume;
    store_.setValue(general, QStringLiteral("radiostation"), station);
    store_.setValue(general, QStringLiteral("radiovolume"), StoredValue::intText(volume));
    emit changed();
}

QString Settings::soundFile(int slot) const {
    return SoundSlots::isValid(slot) ? values_.sounds[std::size_t(slot)] : QString();
}

QString Settings::userString() const {
    return store_.value(QString::fromLatin1(SettingsStore::Users), QStringLiteral("UserString"));
}

void Settings::setUserString(const QString& text) {
    store_.setValue(QString::fromLatin1(SettingsStore::Users), QStringLiteral("UserString"), text);
    store_.sync();
}

QString Settings::knownServer(const QString& hostAndPort) const {
    return store_.value(QString::fromLatin1(SettingsStore::KnownServers), hostAndPort);
}

void Settings::setKnownServer(const QString& hostAndPort, const QString& fingerprint) {
    store_.setValue(QString::fromLatin1(SettingsStore::KnownServers), hostAndPort, fingerprint);
    store_.sync();
}

bool Settings::isNagSuppressed(const QString& version) const {
    return StoredValue::parseFlag(store_.value(general, QStringLiteral("nag-") + version))
        .value_or(false);
}

void Settings::suppressNag(const QString& version) {
    store_.setValue(general, QStringLiteral("nag-") + version, StoredValue::flagText(true));
}

}  // namespace tavren
