#pragma once

#include <QHash>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QRect>
#include <QSet>
#include <QTimer>

#include "utils/SnapGeometry.h"

class QWidget;

namespace tavren {

// Makes the client's windows magnetic: a window let go within a few pixels of a screen edge or
// of another of our windows snaps against it, and windows that sit against the main window move
// with it. Window managers move windows themselves while the mouse drags them, so a window snaps
// once it has come to rest (no move for a moment) rather than fighting the drag.
//
// Where the window system does not let a program place its windows (Wayland), nothing is done.
class cMagneticWnd : public QObject {
    Q_OBJECT
  public:
    // How long a window must lie still after a move before it snaps.
    static constexpr int kSettleMs = 250;

    explicit cMagneticWnd(QWidget* mainWindow, int distance = SnapGeometry::kDefaultDistance,
                          QObject* parent = nullptr);
    ~cMagneticWnd() override;

    // Whether this platform lets a program move its own windows.
    static bool supported();
    // Whether a window takes part: a normal window or dialog of ours, with a frame.
    static bool takesPart(const QWidget* window);

    // Snaps a window now instead of once it has settled (tests and programmatic moves).
    void settle(QWidget* window);

  signals:
    // A window was moved by the magnet (snapped, or carried along with the main window).
    void placed(QWidget* window, const QPoint& position);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void track(QWidget* window);
    void windowMoved(QWidget* window);
    void carryDocked(const QRect& from, const QRect& to);
    void moveTo(QWidget* window, const QPoint& position);
    void settleNow();

    QPointer<QWidget> main_;
    int distance_;
    bool active_;
    // The last frame each window was seen at: where the main window was before it moved decides
    // which windows were docked to it.
    QHash<QWidget*, QRect> frames_;
    // Positions we asked for and have not seen arrive yet: their move events are our own.
    QHash<QWidget*, QPoint> ours_;
    QSet<QWidget*> watched_;
    QTimer settleTimer_;
    QPointer<QWidget> settling_;
};

}  // namespace tavren
