#include "utils/ui/cMagneticWnd.h"

#include <QApplication>
#include <QEvent>
#include <QScreen>
#include <QWidget>

namespace tavren {

cMagneticWnd::cMagneticWnd(QWidget* mainWindow, int distance, QObject* parent)
    : QObject(parent), main_(mainWindow), distance_(distance), active_(supported()) {
    settleTimer_.setSingleShot(true);
    settleTimer_.setInterval(kSettleMs);
    connect(&settleTimer_, &QTimer::timeout, this, &cMagneticWnd::settleNow);
    if (active_) {
        qApp->installEventFilter(this);
    }
}

cMagneticWnd::~cMagneticWnd() {
    if (active_) {
        qApp->removeEventFilter(this);
    }
}

bool cMagneticWnd::supported() {
    // Wayland leaves placement to the compositor: a program's moves are ignored there, and a
    // magnet that cannot move anything should not try.
    return !QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}

bool cMagneticWnd::takesPart(const QWidget* window) {
    if (window == nullptr || !window->isWindow() || !window->isVisible()) {
        return false;
    }
    const Qt::WindowType type = window->windowType();
    if (type != Qt::Window && type != Qt::Dialog) {
        return false;  // menus, tooltips, tool overlays such as the capture rectangle
    }
    return !window->windowFlags().testFlag(Qt::FramelessWindowHint) && !window->isMaximized() &&
           !window->isFullScreen() && !window->isMinimized();
}

bool cMagneticWnd::eventFilter(QObject* watched, QEvent* event) {
    const QEvent::Type type = event->type();
    if (type != QEvent::Move && type != QEvent::Resize && type != QEvent::Show &&
        type != QEvent::Hide) {
        return false;
    }
    auto* window = qobject_cast<QWidget*>(watched);
    if (window == nullptr || !window->isWindow()) {
        return false;
    }
    if (type == QEvent::Hide) {
        frames_.remove(window);
        ours_.remove(window);
        return false;
    }
    if (!takesPart(window)) {
        return false;
    }
    if (type == QEvent::Move) {
        windowMoved(window);
    } else {
        track(window);
        QWidget* main = main_.data();
        if (main != nullptr && main->isVisible() && !frames_.contains(main)) {
            track(main);
        }
    }
    return false;
}

void cMagneticWnd::track(QWidget* window) {
    if (!watched_.contains(window)) {
        // A window may go without hiding first; it must not stay behind as a dangling key.
        watched_.insert(window);
        connect(window, &QObject::destroyed, this, [this, window] {
            frames_.remove(window);
            ours_.remove(window);
            watched_.remove(window);
        });
    }
    frames_.insert(window, window->frameGeometry());
}

void cMagneticWnd::windowMoved(QWidget* window) {
    const QRect now = window->frameGeometry();
    const QRect before = frames_.value(window, now);
    track(window);
    if (const auto asked = ours_.find(window); asked != ours_.end()) {
        const bool arrived = window->pos() == *asked;
        ours_.erase(asked);
        if (arrived) {
            return;  // the move we made ourselves
        }
    }
    if (window == main_) {
        carryDocked(before, now);
    }
    settling_ = window;
    settleTimer_.start();
}

void cMagneticWnd::carryDocked(const QRect& from, const QRect& to) {
    const QPoint delta = to.topLeft() - from.topLeft();
    if (delta.isNull()) {
        return;
    }
    for (auto it = frames_.begin(); it != frames_.end(); ++it) {
        QWidget* other = it.key();
        if (other == main_ || !takesPart(other) || !SnapGeometry::docked(*it, from)) {
            continue;
        }
        it.value().translate(delta);
        moveTo(other, other->pos() + delta);
    }
}

void cMagneticWnd::settle(QWidget* window) {
    if (settling_ == window) {
        settleTimer_.stop();
    }
    settling_ = window;
    settleNow();
}

void cMagneticWnd::settleNow() {
    QWidget* window = settling_;
    settling_ = nullptr;
    if (!active_ || !takesPart(window)) {
        return;
    }
    const QRect frame = window->frameGeometry();
    frames_.insert(window, frame);
    QList<QRect> others;
    for (auto it = frames_.constBegin(); it != frames_.constEnd(); ++it) {
        QWidget* other = it.key();
        if (other == window || !takesPart(other)) {
            continue;
        }
        // The main window does not snap to the windows it carries: they follow it anyway.
        if (window == main_ && SnapGeometry::docked(*it, frame)) {
            continue;
        }
        others << other->frameGeometry();
    }
    QList<QRect> screens;
    for (const QScreen* screen : QGuiApplication::screens()) {
        screens << screen->availableGeometry();
    }
    const QPoint corner = SnapGeometry::snap(frame, others, screens, distance_);
    if (corner != frame.topLeft()) {
        moveTo(window, window->pos() + (corner - frame.topLeft()));
        frames_.insert(window, QRect(corner, frame.size()));
    }
}

void cMagneticWnd::moveTo(QWidget* window, const QPoint& position) {
    ours_.insert(window, position);
    window->move(position);
    emit placed(window, position);
}

}  // namespace tavren
