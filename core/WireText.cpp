#include "core/WireText.h"

#include "core/protocol/CodePage1252.h"

namespace tavren {

std::string WireText::toWire(const QString& text) {
    const QByteArray utf8 = text.toUtf8();
    return protocol::Utf8ToCp1252(
        std::string_view(utf8.constData(), static_cast<std::size_t>(utf8.size())));
}

QString WireText::fromWire(std::string_view bytes) {
    const std::string utf8 = protocol::Cp1252ToUtf8(bytes);
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

}  // namespace tavren
