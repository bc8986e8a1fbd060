#pragma once

#include <QList>
#include <QRect>
#include <QSize>

namespace tavren {

// Where a remembered window goes now that the screens may have changed, as plain arithmetic.
class ScreenFit {
  public:
    // `wanted` is the remembered geometry, `screens` the available areas with the primary first.
    // The window goes on the screen that holds most of it, moved (and, if it is larger than that
    // screen, shrunk, never below `minimum`) until it lies wholly inside. When no screen holds
    // any of it — it was on a screen that is gone — it goes in the middle of the primary screen.
    // With no screen at all the wish stands.
    static QRect fit(const QRect& wanted, const QList<QRect>& screens, const QSize& minimum);
};

}  // namespace tavren
