#pragma once

#include <QString>

#include "pm/TypingStatus.h"

namespace tavren {

// One private conversation, as its tab shows it.
struct Conversation {
    QString user;   // the caption: the other member's name, as the server last spelled it
    int index = 0;  // the tab's tag, 0..99: which pane and entry box are its own
    TypingStatus ownTyping = TypingStatus::Idle;
    TypingStatus peerTyping = TypingStatus::Idle;
    bool boxHasText = false;
    // The entry box changed since the typing timer last ticked.
    bool editedSinceTick = false;
    // The away answer went out in this away period.
    bool awayReplied = false;
    bool unread = false;
};

}  // namespace tavren
