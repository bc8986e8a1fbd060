#include "config/SettingsStore.h"

#include <QDir>
#include <QSettings>
#include <QStringList>

namespace tavren {

namespace {

std::unique_ptr<QSettings> openDefaultStore() {
    const QString home = qEnvironmentVariable("TAVREN_HOME");
    if (!home.isEmpty()) {
        return std::make_unique<QSettings>(QDir(home).filePath(QStringLiteral("settings.ini")),
                                           QSettings::IniFormat);
    }
    return std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope,
                                       QStringLiteral("Tavren"), QStringLiteral("Tavren"));
}

}  // namespace

SettingsStore::SettingsStore() : settings_(openDefaultStore()) {}

SettingsStore::SettingsStore(const QString& iniPath)
    : settings_(std::make_unique<QSettings>(iniPath, QSettings::IniFormat)) {}

SettingsStore::SettingsStore(std::unique_ptr<QSettings> settings)
    : settings_(std::move(settings)) {}

SettingsStore::~SettingsStore() {
    settings_->sync();
}

// The application name is the store's own scope (organisation and application "Tavren", or the
// file under the data root), so inside it a value is addressed by section and key alone.
QString SettingsStore::path(const QString& section, const QString& key) {
    return section + QLatin1Char('/') + key;
}

bool SettingsStore::contains(const QString& section, const QString& key) const {
    return settings_->contains(path(section, key));
}

QString SettingsStore::value(const QString& section, const QString& key,
                             const QString& fallback) const {
    const QVariant stored = settings_->value(path(section, key));
    if (!stored.isValid()) {
        return fallback;
    }
    // An INI value with an unquoted comma reads back as a list; keep the text the user wrote.
    if (stored.typeId() == QMetaType::QStringList) {
        return stored.toStringList().join(QStringLiteral(", "));
    }
    return stored.toString();
}

void SettingsStore::setValue(const QString& section, const QString& key, const QString& value) {
    settings_->setValue(path(section, key), value);
}

void SettingsStore::remove(const QString& section, const QString& key) {
    settings_->remove(path(section, key));
}

bool SettingsStore::sync() {
    settings_->sync();
    return settings_->status() == QSettings::NoError;
}

QString SettingsStore::location() const {
    return settings_->fileName();
}

}  // namespace tavren
