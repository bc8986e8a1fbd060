#pragma once

#include <QString>
#include <array>
#include <optional>

#include "config/WinColor.h"

namespace tavren {

// The fourteen colours a scheme file carries: eight for the window's own surfaces (title, body,
// chat pane, boxes) and the six nickname/message colours of chat lines. A ".tvx" file holds them
// as decimal numbers joined by the character U+0002, in field order, no separator at the end.
class ColorScheme {
  public:
    enum Field {
        TitleText = 0,
        TitleBackground,
        BodyText,
        BodyBackground,
        ChatPane,
        SendBox,
        EntryLine,
        EntryBackground,
        // The message colours, stored in the settings as "color5" .. "color10".
        TheirNick,
        TheirText,
        HostNick,
        HostText,
        OwnNick,
        OwnText,
        FieldCount
    };
    static constexpr int MessageColorCount = 6;

    static QChar separator() { return QChar(2); }
    static QString extension() { return QStringLiteral(".tvx"); }

    // The colours a fresh installation starts with.
    static ColorScheme defaults();
    // Exactly FieldCount decimal colours; anything else (13 or 15 fields, a non-number) is
    // refused. Surrounding blanks and a trailing line break are tolerated.
    static std::optional<ColorScheme> parse(const QString& text);
    QString toText() const;

    WinColor color(Field field) const { return fields_[std::size_t(field)]; }
    void setColor(Field field, WinColor color) { fields_[std::size_t(field)] = color; }

    // The message colours by their settings number 5 .. 10.
    static Field messageField(int settingsNumber) { return Field(TheirNick + settingsNumber - 5); }
    static QString messageKey(Field field) {
        return QStringLiteral("color") + QString::number(int(field) - TheirNick + 5);
    }

    bool operator==(const ColorScheme&) const = default;

  private:
    std::array<WinColor, FieldCount> fields_{};
};

}  // namespace tavren
