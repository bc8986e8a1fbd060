#pragma once

#include <QString>

namespace tavren {

// Where formatted lines go. The windows that own the panes implement these; the line
// formatters only ever see the interfaces, so they run headless in tests.

// The room window: its tabs are the joined channels.
class RoomLineTarget {
  public:
    virtual ~RoomLineTarget() = default;
    // The first room whose caption equals `channel` without regard to case; -1 when none.
    virtual int roomIndex(const QString& channel) const = 0;
    // The pane index the room's tab carries as its tag.
    virtual int paneIndex(int room) const = 0;
    // Appends one paragraph to that pane and keeps it scrolled.
    virtual void AddChat(const QString& html, int paneIndex) = 0;
    virtual bool isSelected(int room) const = 0;
    // Shows the unread marker on the room's tab (cleared when the tab is selected).
    virtual void markUnread(int room) = 0;
};

// The private conversation window.
class PrivateLineTarget {
  public:
    virtual ~PrivateLineTarget() = default;
    virtual void appendPrivateLine(const QString& conversationKey, const QString& html) = 0;
};

// A Hold'em table window.
class TableLineTarget {
  public:
    virtual ~TableLineTarget() = default;
    virtual void AddChat2(const QString& html) = 0;
};

}  // namespace tavren
