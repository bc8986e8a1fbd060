#include "render/ColorText.h"

namespace tavren {

namespace {

// The last six digits of the value's hex text, read back to front in pairs. Padding the hex
// text with six zeros (ColorToHex) or five (ColorToHtml) before taking the last six digits
// gives the same digits, because the hex text of any value has at least one digit; both come
// down to the three low bytes, red first.
void appendSwappedHex(QString& out, WinColor color) {
    static constexpr char digits[] = "0123456789ABCDEF";
    for (int shift = 0; shift < 24; shift += 8) {
        const unsigned byte = (color >> shift) & 0xFFu;
        out += QLatin1Char(digits[byte >> 4]);
        out += QLatin1Char(digits[byte & 0xFu]);
    }
}

}  // namespace

QString ColorToHex(WinColor color) {
    QString hex;
    hex.reserve(6);
    appendSwappedHex(hex, color);
    return hex;
}

QString ColorToHtml(WinColor color) {
    QString html;
    html.reserve(7);
    html += QLatin1Char('#');
    appendSwappedHex(html, color);
    return html;
}

QString ColorToHexPlain(WinColor color) {
    return ColorToHtml(color).mid(1);
}

}  // namespace tavren
