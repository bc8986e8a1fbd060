#pragma once

#include <QString>

namespace tavren {

// Chat markup is written for browsers that take a bare hex colour ("FF0000") where Qt's rich
// text wants "#FF0000". This adds the "#" to six-digit hex values of colour attributes and
// colour style properties inside tags, and leaves everything else as it is.
QString PaneMarkupForQt(const QString& html);

}  // namespace tavren
