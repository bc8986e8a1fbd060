#pragma once

#include <QString>

#include "config/SettingsValues.h"
#include "core/ConnectionOptions.h"

namespace tavren {

// Where the next connect goes, worked out from the settings before any network is touched.
// When `problem` is not empty the settings cannot be used and nothing must be connected.
struct ConnectTarget {
    QString host;
    quint16 port = 0;
    bool viaProxy = false;
    QString problem;

    bool valid() const { return problem.isEmpty(); }

    static ConnectTarget fromSettings(const SettingsValues& values,
                                      const ConnectionOptions& options);

    // "{default server #n}" in any letter case names deployment host n; anything else is taken
    // as typed.
    static QString resolveHost(const QString& text, const ConnectionOptions& options);
    // "{default port}" in any letter case is the default port; anything else must be a number
    // from 1 to 65535, else 0 (unusable).
    static quint16 resolvePort(const QString& text, const ConnectionOptions& options);
};

}  // namespace tavren
