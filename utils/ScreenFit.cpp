#include "utils/ScreenFit.h"

#include <algorithm>

namespace tavren {

namespace {

qint64 area(const QRect& r) {
    return r.isEmpty() ? 0 : qint64(r.width()) * r.height();
}

// Moves `r` the least distance that puts it inside `screen`.
QRect moveInside(QRect r, const QRect& screen) {
    // A window larger than the screen (its minimum size) keeps its top-left corner on it.
    r.moveLeft(
        std::max(screen.left(), std::min(r.left(), screen.left() + screen.width() - r.width())));
    r.moveTop(
        std::max(screen.top(), std::min(r.top(), screen.top() + screen.height() - r.height())));
    return r;
}

}  // namespace

QRect ScreenFit::fit(const QRect& wanted, const QList<QRect>& screens, const QSize& minimum) {
    if (screens.isEmpty()) {
        return wanted;
    }
    const QRect* best = nullptr;
    qint64 bestArea = 0;
    for (const QRect& screen : screens) {
        const qint64 shared = area(wanted.intersected(screen));
        if (shared > bestArea) {
            best = &screen;
            bestArea = shared;
        }
    }
    const bool lost = best == nullptr;
    const QRect& screen = lost ? screens.front() : *best;
    QSize size = wanted.size().expandedTo(minimum);
    size = size.boundedTo(screen.size()).expandedTo(minimum);
    QRect placed(wanted.topLeft(), size);
    if (lost) {
        placed.moveCenter(screen.center());
    }
    return moveInside(placed, screen);
}

}  // namespace tavren
