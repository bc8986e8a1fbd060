#pragma once

#include <QObject>
#include <QString>

#include "config/SettingsValues.h"

namespace tavren {

class AutostartRegistrar;
class SettingsStore;

// The client's preferences, shared by every window: loaded once at start-up, replaced as a whole
// when the settings window commits, and announced with `changed()` so windows can follow.
// It also keeps the few process-wide values that hang off the settings: the armed
// auto-reconnect flag, the auto-scroll threshold, the current nickname and the tool-bar and
// advertisement switches of the main window.
class Settings : public QObject {
    Q_OBJECT

  public:
    // `autostart` may be null: saving then leaves the operating system's start-up list alone.
    Settings(SettingsStore& store, const QString& dataRoot, AutostartRegistrar* autostart,
             QObject* parent = nullptr);

    const SettingsValues& values() const { return values_; }
    SettingsValues defaults() const { return SettingsValues::defaults(dataRoot_); }
    // Replaces the values in memory (nothing is written); emits changed().
    void setValues(const SettingsValues& values);

    // Reads every key; an absent or unreadable value keeps its default. Emits changed().
    void load();
    // Writes every key, running on past a failed step; then registers or unregisters start with
    // the operating system if everything so far was written. False when anything failed.
    bool save();

    // Process-wide values.
    bool autoReconnectArmed() const { return autoReconnectArmed_; }
    void setAutoReconnectArmed(bool armed) { autoReconnectArmed_ = armed; }
    // Chat panes follow a new line when the reader is within this distance of the bottom.
    int scrollThreshold() const { return 16 - values_.autoScroll; }
    static int scrollThresholdFor(int autoScroll) { return 16 - autoScroll; }

    // The last nickname the server confirmed. Kept per data root: two installations in
    // different folders keep different nicknames. Written at once.
    QString nickname() const { return nickname_; }
    void setNickname(const QString& nickname);
    QString nicknameKey() const { return QStringLiteral("nick") + dataRoot_; }

    // Main-window switches, written at once when the menu toggles them.
    bool showAds() const { return showAds_; }
    void setShowAds(bool shown);
    bool showTools() const { return showTools_; }
    void setShowTools(bool shown);

    // The main window's sound switch, written at once; emits changed().
    void setPlaySounds(bool on);

    // The radio player's station and volume, written at once.
    void setRadio(const QString& station, int volume);

    // The sound file of a slot, or SoundSlots::disabledText(); empty for an invalid slot.
    QString soundFile(int slot) const;

    // Saved accounts, kept as one text whose layout belongs to the login window.
    QString userString() const;
    void setUserString(const QString& text);
    // The certificate fingerprint the member accepted for a server ("host:port"), or empty.
    // Kept for servers whose certificate no authority the system trusts vouches for.
    QString knownServer(const QString& hostAndPort) const;
    void setKnownServer(const QString& hostAndPort, const QString& fingerprint);
    // Whether the user asked not to be reminded again of the update to `version`.
    bool isNagSuppressed(const QString& version) const;
    void suppressNag(const QString& version);

    QString dataRoot() const { return dataRoot_; }
    SettingsStore& store() { return store_; }
    const SettingsStore& store() const { return store_; }

    // Drop-down rule for the server and port: a value matching an entry regardless of letter
    // case selects that entry; any other non-empty value is added. Returns the selected text.
    static QString selectOrAdd(QStringList& entries, const QString& value);

  signals:
    void changed();
    void nicknameChanged(const QString& nickname);
    void showAdsChanged(bool shown);
    void showToolsChanged(bool shown);

  private:
    bool readFlag(const char* section, const char* key, bool fallback) const;
    int readInt(const char* key, int fallback, int minimum, int maximum) const;
    WinColor readColor(const QString& key, WinColor fallback) const;
    QString readText(const char* section, const char* key, const QString& fallback) const;
    void write(const char* section, const QString& key, const QString& value);
    void writeFlag(const char* key, bool on);
    void writeColor(ColorScheme::Field field);
    void applySchemeFile();

    SettingsStore& store_;
    QString dataRoot_;
    AutostartRegistrar* autostart_;
    SettingsValues values_;
    bool autoReconnectArmed_ = true;
    QString nickname_;
    bool showAds_ = true;
    bool showTools_ = true;
};

}  // namespace tavren
