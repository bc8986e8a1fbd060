#pragma once

#include "config/WinColor.h"

namespace tavren {

class ChatPane;

// Empties a room or private pane onto the chat background colour.
void ResetChatPane(ChatPane& pane, WinColor background);
// Empties a table pane onto the table's colour, with the table's dark scroll bar.
void ResetTablePane(ChatPane& pane, WinColor color);

}  // namespace tavren
