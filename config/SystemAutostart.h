#pragma once

#include <QString>

#include "config/AutostartRegistrar.h"

namespace tavren {

// The operating system's own start-with-the-session mechanism: the per-user "Run" key on
// Windows; elsewhere an XDG autostart entry ("tavren.desktop" in $XDG_CONFIG_HOME/autostart).
// A data root chosen with $TAVREN_HOME travels into the entry so a portable install starts
// with its own settings.
class SystemAutostart : public AutostartRegistrar {
  public:
    SystemAutostart();
    // Non-Windows only: keep the entry in this folder instead of the session's autostart folder.
    explicit SystemAutostart(const QString& autostartFolder);

    bool setEnabled(bool enabled) override;
    bool isEnabled() const override;

    // The text of the XDG entry that starts `program` (with `dataRoot` when not empty).
    static QString desktopEntry(const QString& program, const QString& dataRoot);

  private:
    QString entryPath() const;

    QString folder_;
};

}  // namespace tavren
