#pragma once

#include <QString>

namespace tavren {

// What the text in a conversation's entry box asks for when the member sends it. Checked in
// this order on the trimmed text: "/clear" and "/back" (any letter case) are the client's own;
// text whose first five characters are "/away" in any case (with or without a blank after) is
// an away request and is sent whole; everything else is a message.
struct PrivateInput {
    enum class Kind { Nothing, Clear, Back, Away, Message };

    Kind kind = Kind::Nothing;
    // Away: the whole trimmed text. Message: the text as it goes out, replacements made and
    // line breaks written as CR LF (which the receiving pane shows as line breaks).
    QString text;

    static PrivateInput classify(const QString& entryText);

    // The fixed replacements every outgoing message goes through, in this order, each over
    // the whole text and case-sensitive:
    //   "&#ip"                      -> "<i>IP Address</i>"  (a placeholder a member types
    //                                  instead of an address they do not want to give away)
    //   "&lt;b&gt;"  / "&lt;/b&gt;" -> "<b>" / "</b>"
    //   "&lt;i&gt;"  / "&lt;/i&gt;" -> "<i>" / "</i>"
    //   "&lt;u&gt;"  / "&lt;/u&gt;" -> "<u>" / "</u>"
    //   "&lt;s&gt;"  / "&lt;/s&gt;" -> "<s>" / "</s>"
    // so that the escaped form of a formatting tag, pasted from a pane or typed, formats as
    // the tag does. No other escaped tag is turned back: a link or a picture has to be typed
    // as markup to be one.
    static QString applyReplacements(QString text);
};

}  // namespace tavren
