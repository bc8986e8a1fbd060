// The magnet's arithmetic and the placement's screen rule, as plain code.
#include <gtest/gtest.h>

#include "utils/ScreenFit.h"
#include "utils/SnapGeometry.h"

namespace tavren {
namespace {

const QRect kScreen(0, 0, 1280, 1024);

TEST(SnapGeometryTest, ScreenEdgesPullFromInsideWithinTheDistanceOnly) {
    // 10 px from the left edge and 5 px from the top: both snap.
    EXPECT_EQ(SnapGeometry::snap(QRect(10, 5, 300, 200), {}, {kScreen}, 12), QPoint(0, 0));
    // 13 px away is beyond 12: nothing moves.
    EXPECT_EQ(SnapGeometry::snap(QRect(13, 400, 300, 200), {}, {kScreen}, 12), QPoint(13, 400));
    // The right and bottom edges: the window's far edges go onto them.
    EXPECT_EQ(SnapGeometry::snap(QRect(975, 820, 300, 200), {}, {kScreen}, 12), QPoint(980, 824));
    // Slightly past the edge comes back too.
    EXPECT_EQ(SnapGeometry::snap(QRect(-7, 300, 300, 200), {}, {kScreen}, 12), QPoint(0, 300));
    // A second screen's edges mean nothing to a window on the first.
    EXPECT_EQ(
        SnapGeometry::snap(QRect(500, 500, 300, 200), {}, {kScreen, QRect(1280, 0, 1024, 768)}, 12),
        QPoint(500, 500));
}

TEST(SnapGeometryTest, WindowsMeetEdgeToEdgeAndLineUpWhenStacked) {
    const QRect main(400, 300, 250, 400);  // right edge at 650, bottom at 700
    // Just right of the main window, 6 px gap, top 9 px lower: it moves left onto the edge,
    // and its top lines up with the main window's.
    EXPECT_EQ(SnapGeometry::snap(QRect(656, 309, 300, 200), {main}, {kScreen}, 12),
              QPoint(650, 300));
    // Overlapping the left edge by 5 px: pushed out to the left of it.
    EXPECT_EQ(SnapGeometry::snap(QRect(105, 500, 300, 150), {main}, {kScreen}, 12),
              QPoint(100, 500));
    // Below it, 4 px lower and 7 px to the left: its top goes to the bottom edge and its left
    // side lines up.
    EXPECT_EQ(SnapGeometry::snap(QRect(393, 704, 250, 100), {main}, {kScreen}, 12),
              QPoint(400, 700));
    // Near the main window's right edge line but far below it: no overlap, no pull.
    EXPECT_EQ(SnapGeometry::snap(QRect(655, 760, 200, 100), {main}, {kScreen}, 12),
              QPoint(655, 760));
    // The nearest edge wins: the screen's left edge is 3 px away, another window's 8 px.
    EXPECT_EQ(
        SnapGeometry::snap(QRect(3, 100, 200, 100), {QRect(-300, 50, 295, 300)}, {kScreen}, 12).x(),
        0);
}

TEST(SnapGeometryTest, DockedMeansTouchingAlongAnEdgeThatOverlaps) {
    const QRect main(400, 300, 250, 400);
    EXPECT_TRUE(SnapGeometry::docked(QRect(650, 300, 300, 200), main));   // right side
    EXPECT_TRUE(SnapGeometry::docked(QRect(100, 650, 300, 200), main));   // left, low
    EXPECT_TRUE(SnapGeometry::docked(QRect(400, 700, 250, 100), main));   // below
    EXPECT_TRUE(SnapGeometry::docked(QRect(500, 200, 100, 100), main));   // above
    EXPECT_FALSE(SnapGeometry::docked(QRect(653, 300, 300, 200), main));  // a gap of 3
    EXPECT_FALSE(SnapGeometry::docked(QRect(650, 700, 300, 200), main));  // corner only
    EXPECT_FALSE(SnapGeometry::docked(QRect(450, 350, 100, 100), main));  // inside
    EXPECT_TRUE(SnapGeometry::docked(QRect(652, 300, 300, 200), main, 2));
}

TEST(ScreenFitTest, RememberedPlacesComeBackOnAScreenThatExists) {
    const QList<QRect> screens{QRect(0, 0, 1280, 1024), QRect(1280, 0, 1024, 768)};
    const QSize minimum(200, 150);
    // Wholly on the second screen: kept as it is.
    EXPECT_EQ(ScreenFit::fit(QRect(1400, 100, 400, 300), screens, minimum),
              QRect(1400, 100, 400, 300));
    // Its screen is gone (it was right of both): the middle of the primary screen.
    EXPECT_EQ(ScreenFit::fit(QRect(2600, 100, 400, 300), screens, minimum),
              QRect(440, 362, 400, 300));
    // Hanging over the bottom of the second screen: moved up onto it.
    EXPECT_EQ(ScreenFit::fit(QRect(1500, 600, 400, 300), screens, minimum),
              QRect(1500, 468, 400, 300));
    // Mostly on the first screen, partly beyond its left edge: moved right.
    EXPECT_EQ(ScreenFit::fit(QRect(-100, 50, 400, 300), screens, minimum), QRect(0, 50, 400, 300));
    // Larger than the screen it is on: shrunk to it.
    EXPECT_EQ(ScreenFit::fit(QRect(1300, 10, 3000, 3000), screens, minimum),
              QRect(1280, 0, 1024, 768));
    // Smaller than its minimum (a damaged value): grown to the minimum.
    EXPECT_EQ(ScreenFit::fit(QRect(10, 10, 5, 5), screens, minimum), QRect(10, 10, 200, 150));
    // No screen at all: the wish stands.
    EXPECT_EQ(ScreenFit::fit(QRect(9, 9, 50, 50), {}, minimum), QRect(9, 9, 50, 50));
}

}  // namespace
}  // namespace tavren
