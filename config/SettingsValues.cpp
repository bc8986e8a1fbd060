#include "config/SettingsValues.h"

namespace tavren {

QStringList SettingsValues::defaultServerHostChoices() {
    return {QStringLiteral("{default server #1}"), QStringLiteral("{default server #2}"),
            QStringLiteral("{default server #3}"), QStringLiteral("{default server #4}")};
}

SettingsValues SettingsValues::defaults(const QString& dataRoot) {
    SettingsValues values;
    for (int slot = 0; slot < SoundSlots::Count; ++slot) {
        values.sounds[std::size_t(slot)] = SoundSlots::defaultPath(dataRoot, slot);
    }
    return values;
}

}  // namespace tavren
