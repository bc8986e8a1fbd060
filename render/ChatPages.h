#pragma once

#include <QString>

#include "config/WinColor.h"

namespace tavren {

// The empty starting pages of conversation panes, as "about:" addresses whose text is the
// page. A pane given one of these starts empty on that background (ChatPane::navigate).

// Room and private panes: the chat background colour, no margins, no horizontal scrolling.
QString ChatPageHtml(WinColor background);
// Table panes: the same on the table's colour, with the table's dark scroll bar scheme.
QString TablePageHtml(WinColor background);

}  // namespace tavren
