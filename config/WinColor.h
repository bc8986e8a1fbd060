#pragma once

#include <QColor>
#include <QtGlobal>

namespace tavren {

// A colour as the store and the scheme files keep it: 0x00BBGGRR, red in the low byte, written
// as decimal text. Values with the high byte set (old system-colour codes) keep their low three
// bytes when shown.
using WinColor = quint32;

inline QColor toQColor(WinColor color) {
    return QColor(int(color & 0xFF), int((color >> 8) & 0xFF), int((color >> 16) & 0xFF));
}

inline WinColor fromQColor(const QColor& color) {
    return WinColor(color.red()) | (WinColor(color.green()) << 8) | (WinColor(color.blue()) << 16);
}

}  // namespace tavren
