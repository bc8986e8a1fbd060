#pragma once

#include <QString>
#include <QTime>

namespace tavren {

// Time stamps of chat lines: a 12-hour clock, hour without a leading zero.
// Room panes write "3:07:09pm"; private and table panes (and the error log) "3:07:09 PM".
QString RoomLineTime(const QTime& time);
QString PaneLineTime(const QTime& time);

}  // namespace tavren
