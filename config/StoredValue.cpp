#include "config/StoredValue.h"

#include <algorithm>
#include <cstdint>

namespace tavren {

namespace {

std::optional<qlonglong> parseWhole(const QString& text) {
    bool ok = false;
    const qlonglong number = text.trimmed().toLongLong(&ok);
    if (!ok) {
        return std::nullopt;
    }
    return number;
}

std::optional<bool> parseWord(const QString& text) {
    const QString word = text.trimmed();
    if (word.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0) {
        return true;
    }
    if (word.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0) {
        return false;
    }
    return std::nullopt;
}

}  // namespace

std::optional<bool> StoredValue::parseFlag(const QString& text) {
    if (const auto number = parseWhole(text)) {
        return *number != 0;
    }
    return parseWord(text);
}

std::optional<int> StoredValue::parseInt(const QString& text, int minimum, int maximum) {
    const auto number = parseWhole(text);
    if (!number) {
        return std::nullopt;
    }
    return int(std::clamp<qlonglong>(*number, minimum, maximum));
}

std::optional<WinColor> StoredValue::parseColor(const QString& text) {
    const auto number = parseWhole(text);
    if (!number || *number < INT32_MIN || *number > qlonglong(UINT32_MAX)) {
        return std::nullopt;
    }
    return WinColor(quint32(*number));
}

}  // namespace tavren
