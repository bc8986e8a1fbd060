#include "render/LineOptions.h"

#include "config/SettingsValues.h"

namespace tavren {

LineOptions LineOptions::fromSettings(const SettingsValues& values, const QString& dataRoot) {
    LineOptions options;
    options.timestamp = values.timestamp;
    options.boldNames = values.bold;
    options.underlineNames = values.underline;
    options.smileys = values.smiles;
    options.dataRoot = dataRoot;
    return options;
}

}  // namespace tavren
