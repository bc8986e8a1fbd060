#pragma once

#include <QString>
#include <optional>

#include "config/WinColor.h"

namespace tavren {

// Conversions between stored text and typed values. Every parser answers "nothing" for text it
// cannot read, and the caller keeps its default: one hand-edited or damaged value must not stop
// the rest of the settings from loading.
class StoredValue {
  public:
    // Check boxes are stored as "0"/"1" and booleans as the words "True"/"False"; either spelling
    // is read for either kind (any case; any non-zero whole number is true).
    static std::optional<bool> parseFlag(const QString& text);
    // A whole number in [minimum, maximum]; numbers outside the range are clamped, since a
    // slider or spin box would clamp them the same way.
    static std::optional<int> parseInt(const QString& text, int minimum, int maximum);
    // Decimal colour text; negative values are the signed spelling of the same 32 bits.
    static std::optional<WinColor> parseColor(const QString& text);

    static QString flagText(bool on) { return on ? QStringLiteral("1") : QStringLiteral("0"); }
    static QString boolText(bool on) {
        return on ? QStringLiteral("True") : QStringLiteral("False");
    }
    static QString intText(int value) { return QString::number(value); }
    static QString colorText(WinColor color) { return QString::number(color); }
};

}  // namespace tavren
