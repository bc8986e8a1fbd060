#pragma once

#include <QString>
#include <optional>

namespace tavren {

class SettingsStore;

// Where a window was last shown, kept in section "Sizes" under the window's name followed by
// ".left", ".top", ".width", ".height" and ".WindowState" (for example "ChatMain.WindowState").
struct WindowPlacement {
    enum State { Normal = 0, Minimized = 1, Maximized = 2 };

    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    State state = Normal;

    // Nothing when the window has never been placed or a coordinate is unreadable.
    static std::optional<WindowPlacement> load(const SettingsStore& store, const QString& window);
    void save(SettingsStore& store, const QString& window) const;

    bool operator==(const WindowPlacement&) const = default;
};

}  // namespace tavren
