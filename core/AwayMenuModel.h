#pragma once

#include <QString>
#include <QStringList>
#include <vector>

namespace tavren {

// The items of the away menu on the main window's status button. While back it offers a new
// message, every saved message and the editor; while away only "back" and the editor.
class AwayMenuModel {
  public:
    struct Item {
        QString caption;  // empty for a separator
        QString key;      // "new", "spc1", "awy0".., "back", "spc2", "edt"
        bool isSeparator() const { return caption.isEmpty(); }
    };

    static std::vector<Item> build(const QStringList& awayNames, bool away);
    // The index of the away message an "awy" key names, or -1 for any other key.
    static int awayIndex(const QString& key);
};

}  // namespace tavren
