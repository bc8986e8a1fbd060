#include "config/ColumnWidths.h"

#include "config/SettingsStore.h"
#include "config/StoredValue.h"

namespace tavren {

namespace {

QString keyOf(const char* list, int column) {
    return QString::fromLatin1(list) + QString::number(column);
}

constexpr int WidestColumn = 1 << 16;

}  // namespace

int ColumnWidths::read(const SettingsStore& store, const char* list, int column, int fallback) {
    const QString text =
        store.value(QString::fromLatin1(SettingsStore::General), keyOf(list, column));
    return StoredValue::parseInt(text, 0, WidestColumn).value_or(fallback);
}

void ColumnWidths::write(SettingsStore& store, const char* list, int column, int width) {
    store.setValue(QString::fromLatin1(SettingsStore::General), keyOf(list, column),
                   StoredValue::intText(width));
}

}  // namespace tavren
