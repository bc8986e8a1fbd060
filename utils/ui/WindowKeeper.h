#pragma once

#include <QObject>
#include <QSize>
#include <QString>

class QWidget;

namespace tavren {

class Settings;
class SettingsStore;

// Looks after every window of the client in one place: where it was (section "Sizes", the
// window's name followed by ".left", ".top", ".width", ".height" and ".WindowState"), put back on
// a screen that still exists when it first shows; a minimum size, so no window can be shrunk
// until its controls vanish; and the translucency of the settings ("Trans", "Translevel"),
// followed live while the settings window is open.
class WindowKeeper : public QObject {
    Q_OBJECT
  public:
    // Below this no window of ours is usable, whatever its layout says.
    static constexpr QSize kSmallestWindow{160, 100};

    WindowKeeper(Settings& settings, SettingsStore& store, QObject* parent = nullptr);
    ~WindowKeeper() override;

    // The name a window is kept under: its object name, else its class name.
    static QString windowName(const QWidget* window);
    // Whether the keeper looks after a window: ours, normal or dialog, not a message box, a
    // file or colour chooser, a menu or an overlay.
    static bool kept(const QWidget* window);

    // Shows every window at this opacity until the settings say otherwise (the settings window
    // tries out its slider this way); `opacity` 1 is opaque.
    void previewOpacity(double opacity);
    double opacity() const { return opacity_; }

    // Writes the placement of every visible window (the program is ending).
    void saveAll();
    void save(QWidget* window);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void firstShow(QWidget* window);
    void applyOpacity();

    Settings& settings_;
    SettingsStore& store_;
    double opacity_ = 1.0;
};

}  // namespace tavren
