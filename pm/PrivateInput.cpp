#include "pm/PrivateInput.h"

#include <array>
#include <utility>

namespace tavren {

namespace {

constexpr int kAwayCommandLength = 5;

}  // namespace

PrivateInput PrivateInput::classify(const QString& entryText) {
    const QString trimmed = entryText.trimmed();
    if (trimmed.isEmpty()) {
        return {};
    }
    const QString lower = trimmed.toLower();
    if (lower == QLatin1String("/clear")) {
        return {Kind::Clear, {}};
    }
    if (lower == QLatin1String("/back")) {
        return {Kind::Back, QStringLiteral("/back")};
    }
    if (lower.left(kAwayCommandLength) == QLatin1String("/away")) {
        return {Kind::Away, trimmed};
    }
    QString text = applyReplacements(trimmed);
    // A box may hold several lines; the wire and the panes know line breaks as CR LF.
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    text.replace(QLatin1Char('\n'), QStringLiteral("\r\n"));
    return {Kind::Message, text};
}

QString PrivateInput::applyReplacements(QString text) {
    static const std::array<std::pair<QLatin1String, QLatin1String>, 9> kReplacements{{
        {QLatin1String("&#ip"), QLatin1String("<i>IP Address</i>")},
        {QLatin1String("&lt;b&gt;"), QLatin1String("<b>")},
        {QLatin1String("&lt;/b&gt;"), QLatin1String("</b>")},
        {QLatin1String("&lt;i&gt;"), QLatin1String("<i>")},
        {QLatin1String("&lt;/i&gt;"), QLatin1String("</i>")},
        {QLatin1String("&lt;u&gt;"), QLatin1String("<u>")},
        {QLatin1String("&lt;/u&gt;"), QLatin1String("</u>")},
        {QLatin1String("&lt;s&gt;"), QLatin1String("<s>")},
        {QLatin1String("&lt;/s&gt;"), QLatin1String("</s>")},
    }};
    for (const auto& [from, to] : kReplacements) {
        text.replace(from, to, Qt::CaseSensitive);
    }
    return text;
}

}  // namespace tavren
