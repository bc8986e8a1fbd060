#include "core/WireText.h"

#include "core/protocol/CodePage1252.h"

namespace tavren {

std::string WireText::toWire(const QString& text) {
    const QByteArray utf8 = text.toUtf8();
    return protocol::Utf8ToCp1252(
        std::string_view(utf8.constData(), static_cast<std::size_t>(utf8.size())));
}

bool WireText::fitsWire(const QString& text) {
    return fromWire(toWire(text)) == text;
}

QString WireText::refusalForWire(const QString& text, const QString& field) {
    for (qsizetype i = 0; i < text.size(); ++i) {
        // A whole character, surrogate pairs included.
        const qsizetype length = text.at(i).isHighSurrogate() && i + 1 < text.size() ? 2 : 1;
        const QString character = text.mid(i, length);
        if (!fitsWire(character)) {
            return QStringLiteral(
                       "The %1 cannot contain \"%2\": only Western European "
                       "characters (Windows-1252) reach the server as typed.")
                .arg(field, character);
        }
        i += length - 1;
    }
    return QString();
}

QString WireText::fromWire(std::string_view bytes) {
    const std::string utf8 = protocol::Cp1252ToUtf8(bytes);
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

}  // namespace tavren
