#pragma once

#include <QString>

namespace tavren {

struct SettingsValues;

// The preferences a chat line is formatted with, copied out of the settings so that the
// formatter needs nothing else. `dataRoot` is the folder whose "smiles" folder holds the smiley
// pictures; it is written into the markup as the formatter finds it.
struct LineOptions {
    bool timestamp = true;
    bool boldNames = true;
    bool underlineNames = false;
    bool smileys = true;
    QString dataRoot;

    static LineOptions fromSettings(const SettingsValues& values, const QString& dataRoot);

    bool operator==(const LineOptions&) const = default;
};

}  // namespace tavren
