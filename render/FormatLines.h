#pragma once

#include <QString>

#include "config/WinColor.h"
#include "render/ChatLineFormatter.h"
#include "render/LineTargets.h"
#include "render/TextStyle.h"

namespace tavren {

// The one way every part of the client shows a chat line: format it, then hand it to the pane
// that shows it. `text` is rewritten in place as ChatLineFormatter::formatLine says.

// A room line. No room captioned `channel` (any letter case): nothing is shown and nothing is
// marked. Otherwise the room's pane gets the line, and when `highlight` is set and the room is
// not the selected tab, the tab is marked unread.
void FormatRoomLine(const ChatLineFormatter& formatter, RoomLineTarget& target,
                    const QString& channel, const QString& label, QString& text, WinColor nameColor,
                    WinColor textColor, bool boldText, int size, bool highlight,
                    const TextStyle& style = {});

// A line of the private conversation `conversationKey`.
void FormatPrivateLine(const ChatLineFormatter& formatter, PrivateLineTarget& target,
                       const QString& conversationKey, const QString& label, QString& text,
                       WinColor nameColor, WinColor textColor, bool boldText, int size,
                       const TextStyle& style = {});

// A line of a Hold'em table's chat.
void FormatTableLine(const ChatLineFormatter& formatter, TableLineTarget& target,
                     const QString& label, QString& text, WinColor nameColor, WinColor textColor,
                     bool boldText, int size, const TextStyle& style = {});

}  // namespace tavren
