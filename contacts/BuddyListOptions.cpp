#include "contacts/BuddyListOptions.h"

#include "config/SettingsStore.h"
#include "config/StoredValue.h"

namespace tavren {

namespace {

const QString kShowOffline = QStringLiteral("buddyshowoffline");
const QString kPlaySounds = QStringLiteral("buddysounds");
const QString kNotifyOnline = QStringLiteral("buddynotify");

QString general() {
    return QString::fromLatin1(SettingsStore::General);
}

bool readFlag(const SettingsStore& store, const QString& key, bool fallback) {
    return StoredValue::parseFlag(store.value(general(), key)).value_or(fallback);
}

}  // namespace

BuddyListOptions BuddyListOptions::load(const SettingsStore& store) {
    BuddyListOptions options;
    options.showOffline = readFlag(store, kShowOffline, options.showOffline);
    options.playSounds = readFlag(store, kPlaySounds, options.playSounds);
    options.notifyOnline = readFlag(store, kNotifyOnline, options.notifyOnline);
    return options;
}

void BuddyListOptions::save(SettingsStore& store) const {
    store.setValue(general(), kShowOffline, StoredValue::flagText(showOffline));
    store.setValue(general(), kPlaySounds, StoredValue::flagText(playSounds));
    store.setValue(general(), kNotifyOnline, StoredValue::flagText(notifyOnline));
    store.sync();
}

}  // namespace tavren
