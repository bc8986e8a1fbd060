#include "render/FormatLines.h"

namespace tavren {

void FormatRoomLine(const ChatLineFormatter& formatter, RoomLineTarget& target,
                    const QString& channel, const QString& label, QString& text, WinColor nameColor,
                    WinColor textColor, bool boldText, int size, bool highlight,
                    const TextStyle& style) {
    const int room = target.roomIndex(channel);
    if (room < 0) {
        return;
    }
    const QString line = formatter.formatLine(ChatLineFormatter::Variant::Room, label, text,
                                              nameColor, textColor, boldText, size, style);
    target.AddChat(line, target.paneIndex(room));
    if (highlight && !target.isSelected(room)) {
        target.markUnread(room);
    }
}

void FormatPrivateLine(const ChatLineFormatter& formatter, PrivateLineTarget& target,
                       const QString& conversationKey, const QString& label, QString& text,
                       WinColor nameColor, WinColor textColor, bool boldText, int size,
                       const TextStyle& style) {
    target.appendPrivateLine(conversationKey,
                             formatter.formatLine(ChatLineFormatter::Variant::Private, label, text,
                                                  nameColor, textColor, boldText, size, style));
}

void FormatTableLine(const ChatLineFormatter& formatter, TableLineTarget& target,
                     const QString& label, QString& text, WinColor nameColor, WinColor textColor,
                     bool boldText, int size, const TextStyle& style) {
    target.AddChat2(formatter.formatLine(ChatLineFormatter::Variant::Table, label, text, nameColor,
                                         textColor, boldText, size, style));
}

}  // namespace tavren
