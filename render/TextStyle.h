#pragma once

#include <QString>

namespace tavren {

// Decoration a sender's nickname format asks for on the message text, on top of the colours,
// size and bold flag every line has. A plain style adds no markup at all.
struct TextStyle {
    bool italic = false;
    bool underline = false;
    QString face;  // font family; empty = the line's own face

    bool isPlain() const { return !italic && !underline && face.isEmpty(); }

    bool operator==(const TextStyle&) const = default;
};

}  // namespace tavren
