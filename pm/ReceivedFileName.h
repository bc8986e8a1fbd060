#pragma once

#include <QString>
#include <optional>

namespace tavren {

// The rules a file name from the other member must pass before anything is written under it.
//
// The name must hold a "."; it is split at the first one into a base and an extension (so
// "backup.tar.gz" has the extension "tar.gz"). The extension is 1 to 10 characters, the base 1
// to 50. On top of that, since the name comes from somebody else and the file lands in the
// member's own folder, nothing that could name another place or a device passes: no path
// separators or drive colons, no "..", no control characters or characters Windows refuses in
// names, no device names such as "con.txt" or "LPT1.log", no name ending in a dot or a blank
// (Windows drops those and would write a different name).
class ReceivedFileName {
  public:
    static constexpr int kMaxBase = 50;
    static constexpr int kMaxExtension = 10;

    // The name to write the file under, or nothing when the name is refused.
    static std::optional<QString> check(const QString& sent);

    // Pictures are shown in the conversation; everything else as a link. By extension, in any
    // letter case: png, bmp, jpeg, gif, jpg (the extension being all after the first dot).
    static bool isPicture(const QString& name);

    // The member's own name made safe as part of a file name (the temporary receive file, the
    // screen captures): characters outside letters, digits, "_", "-" and "." become "_".
    static QString safePart(const QString& text);
};

}  // namespace tavren
