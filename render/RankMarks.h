#pragma once

#include <QString>

namespace tavren {

// A member list shows ranks as marks in front of names ("@", "@¹", "@²", "@³"). Every
// comparison of a listed name with a plain account name goes through this: it removes every
// "¹", "²", "³" and "@" wherever they stand.
QString StripRankMarks(const QString& name);

}  // namespace tavren
