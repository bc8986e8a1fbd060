#include "render/NicknameFormat.h"

#include <QStringList>
#include <algorithm>

namespace tavren {

namespace {

constexpr int kFieldCount = 7;
constexpr WinColor kLargestColor = 0xFFFFFF;

std::optional<WinColor> parseColor(const QString& field) {
    // Plain decimal digits only: no sign, no blanks, no hex. Eight digits already exceed the
    // largest colour, so longer texts need not be converted at all.
    if (field.isEmpty() || field.size() > 8) {
        return std::nullopt;
    }
    WinColor value = 0;
    for (const QChar c : field) {
        if (c < QLatin1Char('0') || c > QLatin1Char('9')) {
            return std::nullopt;
        }
        value = value * 10 + WinColor(c.unicode() - u'0');
    }
    if (value > kLargestColor) {
        return std::nullopt;
    }
    return value;
}

std::optional<bool> parseFlag(const QString& field) {
    if (field == QLatin1String("True")) {
        return true;
    }
    if (field == QLatin1String("False")) {
        return false;
    }
    return std::nullopt;
}

QString flagText(bool on) {
    return on ? QStringLiteral("True") : QStringLiteral("False");
}

}  // namespace

bool NicknameFormat::isAcceptableFace(const QString& face) {
    if (face.size() > MaxFaceLength) {
        return false;
    }
    for (const QChar c : face) {
        if (c == QLatin1Char(';') || c == QLatin1Char(':') ||
            c.category() == QChar::Other_Control || c.category() == QChar::Other_Format ||
            c.isSurrogate() || c.category() == QChar::Separator_Line ||
            c.category() == QChar::Separator_Paragraph) {
            return false;
        }
    }
    return true;
}

std::optional<NicknameFormat> NicknameFormat::parse(const QString& wireText) {
    const QStringList fields = wireText.split(QLatin1Char(';'));
    if (fields.size() != kFieldCount) {
        return std::nullopt;
    }
    const auto nameColor = parseColor(fields.at(0));
    const auto textColor = parseColor(fields.at(1));
    const auto bold = parseFlag(fields.at(2));
    const auto italic = parseFlag(fields.at(3));
    const auto underline = parseFlag(fields.at(4));
    const QString& sizeField = fields.at(5);
    const QString& face = fields.at(6);
    if (!nameColor || !textColor || !bold || !italic || !underline || sizeField.size() != 1 ||
        sizeField.at(0) < QLatin1Char('0' + MinSize) ||
        sizeField.at(0) > QLatin1Char('0' + MaxSize) || !isAcceptableFace(face)) {
        return std::nullopt;
    }
    NicknameFormat format;
    format.nameColor = *nameColor;
    format.textColor = *textColor;
    format.bold = *bold;
    format.italic = *italic;
    format.underline = *underline;
    format.size = sizeField.at(0).unicode() - u'0';
    format.face = face;
    return format;
}

QString NicknameFormat::toText() const {
    return QStringList{QString::number(nameColor & kLargestColor),
                       QString::number(textColor & kLargestColor),
                       flagText(bold),
                       flagText(italic),
                       flagText(underline),
                       QString::number(std::clamp(size, MinSize, MaxSize)),
                       face}
        .join(QLatin1Char(';'));
}

TextStyle NicknameFormat::textStyle() const {
    TextStyle style;
    style.italic = italic;
    style.underline = underline;
    style.face = face;
    return style;
}

}  // namespace tavren
