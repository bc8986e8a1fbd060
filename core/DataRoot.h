#pragma once

#include <QString>

namespace tavren {

// The client's data root: every data file, smiley, sound, scheme and download lives under it.
// $TAVREN_HOME wins when set (tests give each run its own), else the per-user data folder.
class DataRoot {
  public:
    static QString path();
    // A file or folder under the root; `relative` uses "/" and has no leading separator.
    static QString file(const QString& relative);
};

}  // namespace tavren
