#pragma once

#include <QString>

#include "config/WinColor.h"

namespace tavren {

// Colours as chat markup writes them. A WinColor keeps red in its low byte, so the hex text is
// the byte order reversed: 255 (pure red) is "FF0000". Only the low three bytes count; a value
// with higher bits set (an old system-colour reference) is shown by its last six hex digits
// and never resolved.

// Six upper-case hex digits RRGGBB, no "#": the font colour attribute of a chat line.
QString ColorToHex(WinColor color);
// "#" + RRGGBB: page backgrounds.
QString ColorToHtml(WinColor color);
// RRGGBB by the same rule as ColorToHtml, without the "#".
QString ColorToHexPlain(WinColor color);

}  // namespace tavren
