#include "utils/SnapGeometry.h"

#include <cstdlib>

namespace tavren {

namespace {

// Edges as coordinates between pixels: a window from x = 0 that is 100 wide ends at 100, where
// a window beside it begins. QRect::right() is the last pixel, one less.
struct Span {
    int begin;
    int end;
};

Span horizontal(const QRect& r) {
    return {r.x(), r.x() + r.width()};
}
Span vertical(const QRect& r) {
    return {r.y(), r.y() + r.height()};
}

bool overlap(Span a, Span b, int slack) {
    return a.begin < b.end + slack && b.begin < a.end + slack;
}

// The best move of one axis: the smallest shift that puts one of the window's two edges on a
// target edge, if any is within `distance`.
class AxisSnap {
  public:
    AxisSnap(Span window, int distance) : window_(window), distance_(distance) {}

    void beginAt(int edge) { consider(edge - window_.begin); }
    void endAt(int edge) { consider(edge - window_.end); }
    int shift() const { return found_ ? best_ : 0; }

  private:
    void consider(int shift) {
        if (std::abs(shift) <= distance_ && (!found_ || std::abs(shift) < std::abs(best_))) {
            best_ = shift;
            found_ = true;
        }
    }

    Span window_;
    int distance_;
    int best_ = 0;
    bool found_ = false;
};

}  // namespace

QPoint SnapGeometry::snap(const QRect& moving, const QList<QRect>& windows,
                          const QList<QRect>& screens, int distance) {
    const Span h = horizontal(moving);
    const Span v = vertical(moving);
    AxisSnap x(h, distance);
    AxisSnap y(v, distance);
    for (const QRect& screen : screens) {
        const Span sh = horizontal(screen);
        const Span sv = vertical(screen);
        if (!overlap(h, sh, distance) || !overlap(v, sv, distance)) {
            continue;  // another screen's edges mean nothing here
        }
        x.beginAt(sh.begin);
        x.endAt(sh.end);
        y.beginAt(sv.begin);
        y.endAt(sv.end);
    }
    for (const QRect& other : windows) {
        const Span oh = horizontal(other);
        const Span ov = vertical(other);
        if (overlap(v, ov, distance)) {
            // Side by side: outer edges meet.
            x.beginAt(oh.end);
            x.endAt(oh.begin);
        }
        if (overlap(h, oh, distance)) {
            y.beginAt(ov.end);
            y.endAt(ov.begin);
        }
        const bool stacked =
            std::abs(v.begin - ov.end) <= distance || std::abs(v.end - ov.begin) <= distance;
        const bool besides =
            std::abs(h.begin - oh.end) <= distance || std::abs(h.end - oh.begin) <= distance;
        if (stacked && overlap(h, oh, distance)) {
            // One above the other: line up their sides.
            x.beginAt(oh.begin);
            x.endAt(oh.end);
        }
        if (besides && overlap(v, ov, distance)) {
            y.beginAt(ov.begin);
            y.endAt(ov.end);
        }
    }
    return moving.topLeft() + QPoint(x.shift(), y.shift());
}

bool SnapGeometry::docked(const QRect& window, const QRect& anchor, int tolerance) {
    const Span h = horizontal(window);
    const Span v = vertical(window);
    const Span ah = horizontal(anchor);
    const Span av = vertical(anchor);
    const bool sideBySide =
        std::abs(h.end - ah.begin) <= tolerance || std::abs(h.begin - ah.end) <= tolerance;
    const bool aboveOrBelow =
        std::abs(v.end - av.begin) <= tolerance || std::abs(v.begin - av.end) <= tolerance;
    return (sideBySide && overlap(v, av, 0)) || (aboveOrBelow && overlap(h, ah, 0));
}

}  // namespace tavren
