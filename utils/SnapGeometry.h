#pragma once

#include <QList>
#include <QPoint>
#include <QRect>

namespace tavren {

// How a window snaps, as plain arithmetic on frame rectangles (the window with its title bar and
// border), so that every rule is tested without a screen. Each axis snaps on its own to the
// nearest edge within the distance:
// - the edges of the screens' available areas, from inside;
// - another window's outer edges, from outside (this window's left edge to the other's right
//   edge, and so on), where the two overlap along that edge;
// - another window's same edges (left to left, top to top) where the two sit one above the other
//   or side by side, so that windows stacked against each other line up.
class SnapGeometry {
  public:
    // A few pixels: near enough to mean it, far enough to reach with a mouse.
    static constexpr int kDefaultDistance = 12;

    // Where the top-left corner of `moving` should go; its own top-left when nothing is near.
    static QPoint snap(const QRect& moving, const QList<QRect>& windows,
                       const QList<QRect>& screens, int distance = kDefaultDistance);

    // Whether `window` sits against `anchor`: one of its edges on an outer edge of the anchor
    // (within `tolerance` pixels) and the two overlapping along that edge. A window docked to
    // the main window moves with it.
    static bool docked(const QRect& window, const QRect& anchor, int tolerance = 1);
};

}  // namespace tavren
