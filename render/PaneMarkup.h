#pragma once

#include <QString>

namespace tavren {

// Adapts one appended piece of chat markup to Qt's rich-text engine, which differs from the
// browsers the markup is written for:
// - a bare hex colour ("FF0000") in a colour attribute or style property gets its "#";
// - after the third table in one piece, table tags are dropped and their contents flow as
//   text. Qt lays out nested tables in time that doubles with every level, so a line of a few
//   dozen nested tables would freeze the pane; three deep costs nothing.
// Everything else is left as it is.
QString PaneMarkupForQt(const QString& html);

}  // namespace tavren
