#pragma once

#include <QString>

namespace tavren {

// What may stand in a buddy list, by the same rules the server checks, so that a list the
// member edits is refused here with a message instead of by a server notice after sending.
class BuddyNames {
  public:
    // Where a buddy goes when nobody chose a folder (and where the server puts added buddies).
    static QString defaultFolder() { return QStringLiteral("Buddies"); }
    static constexpr int kFolderMaxLength = 32;

    // A member name: 2 to 20 ASCII letters, digits, "_", "-" or ".", starting with a letter.
    static bool isUserName(const QString& name);
    // 1 to 32 printable characters the wire can carry, none of them ":", ";" or "." (the list's
    // own separators) or the record separators U+0001 and U+0002.
    static bool isFolderName(const QString& name);
};

}  // namespace tavren
