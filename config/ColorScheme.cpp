#include "config/ColorScheme.h"

#include <QStringList>

#include "config/StoredValue.h"

namespace tavren {

ColorScheme ColorScheme::defaults() {
    ColorScheme scheme;
    scheme.setColor(TitleText, 16777215);       // white
    scheme.setColor(TitleBackground, 8388608);  // navy
    scheme.setColor(BodyText, 0);               // black
    scheme.setColor(BodyBackground, 15790320);  // light grey
    scheme.setColor(ChatPane, 16777215);
    scheme.setColor(SendBox, 16777215);
    scheme.setColor(EntryLine, 16777215);
    scheme.setColor(EntryBackground, 15790320);
    scheme.setColor(TheirNick, 16744576);  // R128 G128 B255
    scheme.setColor(TheirText, 16711680);  // blue
    scheme.setColor(HostNick, 128);        // dark red
    scheme.setColor(HostText, 255);        // red
    scheme.setColor(OwnNick, 8421504);     // grey
    scheme.setColor(OwnText, 0);           // black
    return scheme;
}

std::optional<ColorScheme> ColorScheme::parse(const QString& text) {
    const QStringList pieces = text.trimmed().split(separator());
    if (pieces.size() != FieldCount) {
        return std::nullopt;
    }
    ColorScheme scheme;
    for (int i = 0; i < FieldCount; ++i) {
        const auto color = StoredValue::parseColor(pieces[i]);
        if (!color) {
            return std::nullopt;
        }
        scheme.fields_[std::size_t(i)] = *color;
    }
    return scheme;
}

QString ColorScheme::toText() const {
    QStringList pieces;
    for (const WinColor color : fields_) {
        pieces << StoredValue::colorText(color);
    }
    return pieces.join(separator());
}

}  // namespace tavren
