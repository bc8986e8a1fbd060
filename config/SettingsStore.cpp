#include "config/SettingsStore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
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

SettingsStore::SettingsStore() : settings_(openDefaultStore()) {
    keepFilePrivate();
}

SettingsStore::SettingsStore(const QString& iniPath)
    : settings_(std::make_unique<QSettings>(iniPath, QSettings::IniFormat)) {
    keepFilePrivate();
}

SettingsStore::SettingsStore(std::unique_ptr<QSettings> settings) : settings_(std::move(settings)) {
    keepFilePrivate();
}

SettingsStore::~SettingsStore() {
    settings_->sync();
    keepFilePrivate();
}

bool SettingsStore::fileBacked() const {
    if (settings_->format() != QSettings::NativeFormat) {
        return true;
    }
#if defined(Q_OS_UNIX) && !defined(Q_OS_DARWIN)
    return true;  // the native store is an INI file under the user's configuration folder
#else
    return false;
#endif
}

void SettingsStore::keepFilePrivate() const {
    const QString file = settings_->fileName();
    if (!fileBacked() || file.isEmpty()) {
        return;
    }
    // Made before QSettings first writes it: QSettings replaces the file through a copy that
    // takes over the permissions of the file it replaces, so 0600 stays from then on.
    if (!QFileInfo::exists(file)) {
        QDir().mkpath(QFileInfo(file).absolutePath());
        QFile created(file);
        if (!created.open(QIODevice::WriteOnly)) {
            return;
        }
    }
    QFile::setPermissions(file, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
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
    // A file replaced by hand or by an older client may have come back readable by others.
    keepFilePrivate();
    return settings_->status() == QSettings::NoError;
}

QString SettingsStore::location() const {
    return settings_->fileName();
}

}  // namespace tavren
