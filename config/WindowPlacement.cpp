#include "config/WindowPlacement.h"

#include "config/SettingsStore.h"
#include "config/StoredValue.h"

namespace tavren {

namespace {

const QString sizes = QString::fromLatin1(SettingsStore::Sizes);

// Generous bounds: enough for any desktop of several screens, small enough that a damaged value
// cannot overflow later geometry arithmetic.
constexpr int Far = 1 << 20;

std::optional<int> readPart(const SettingsStore& store, const QString& window, const char* part,
                            int minimum) {
    return StoredValue::parseInt(store.value(sizes, window + QLatin1String(part)), minimum, Far);
}

}  // namespace

std::optional<WindowPlacement> WindowPlacement::load(const SettingsStore& store,
                                                     const QString& window) {
    const auto left = readPart(store, window, ".left", -Far);
    const auto top = readPart(store, window, ".top", -Far);
    const auto width = readPart(store, window, ".width", 0);
    const auto height = readPart(store, window, ".height", 0);
    if (!left || !top || !width || !height) {
        return std::nullopt;
    }
    WindowPlacement placement{*left, *top, *width, *height, Normal};
    const auto state = readPart(store, window, ".WindowState", Normal);
    if (state && *state <= Maximized) {
        placement.state = State(*state);
    }
    return placement;
}

void WindowPlacement::save(SettingsStore& store, const QString& window) const {
    store.setValue(sizes, window + QLatin1String(".left"), StoredValue::intText(left));
    store.setValue(sizes, window + QLatin1String(".top"), StoredValue::intText(top));
    store.setValue(sizes, window + QLatin1String(".width"), StoredValue::intText(width));
    store.setValue(sizes, window + QLatin1String(".height"), StoredValue::intText(height));
    store.setValue(sizes, window + QLatin1String(".WindowState"), StoredValue::intText(state));
}

}  // namespace tavren
