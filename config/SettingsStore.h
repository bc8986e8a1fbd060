#pragma once

#include <QString>
#include <memory>

class QSettings;

namespace tavren {

// The per-user settings store: string values addressed by a section and a key under the
// application "Tavren". Values are always written as text and converted by the reader, so a
// value hand-edited or left by an older client can never be mistaken for another type.
//
// With $TAVREN_HOME set the store is the INI file "settings.ini" in that folder, so tests and
// portable installs never touch the user's own settings; otherwise it is the platform's native
// per-user store (the registry on Windows, a per-user file elsewhere).
//
// The saved accounts keep their passwords in the store, so where the store is a file it is
// readable and writable by its owner alone (0600), from before the first value is written.
class SettingsStore {
  public:
    static constexpr const char* General = "General";
    static constexpr const char* Sounds = "Sounds";
    static constexpr const char* Sizes = "Sizes";
    static constexpr const char* Users = "Users";
    static constexpr const char* KnownServers = "KnownServers";

    SettingsStore();
    // An INI file at this path, whatever the environment says.
    explicit SettingsStore(const QString& iniPath);
    // Any QSettings the caller prepared (a test's own file, another scope).
    explicit SettingsStore(std::unique_ptr<QSettings> settings);
    ~SettingsStore();

    SettingsStore(const SettingsStore&) = delete;
    SettingsStore& operator=(const SettingsStore&) = delete;

    bool contains(const QString& section, const QString& key) const;
    // The stored text, or `fallback` when the key is absent.
    QString value(const QString& section, const QString& key,
                  const QString& fallback = QString()) const;
    void setValue(const QString& section, const QString& key, const QString& value);
    void remove(const QString& section, const QString& key);

    // Pushes pending writes to the medium; false when the store could not be written.
    bool sync();
    // The file or registry path backing the store (for messages and tests).
    QString location() const;

  private:
    static QString path(const QString& section, const QString& key);
    // Whether the store is a file of its own (not the registry or a preferences service).
    bool fileBacked() const;
    // Creates the file empty if need be and takes every permission but the owner's away.
    void keepFilePrivate() const;

    std::unique_ptr<QSettings> settings_;
};

}  // namespace tavren
