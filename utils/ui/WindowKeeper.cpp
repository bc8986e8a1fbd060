#include "utils/ui/WindowKeeper.h"

#include <QApplication>
#include <QColorDialog>
#include <QEvent>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <QProgressDialog>
#include <QScreen>
#include <QWidget>

#include "config/Settings.h"
#include "config/SettingsStore.h"
#include "config/WindowPlacement.h"
#include "utils/ScreenFit.h"

namespace tavren {

namespace {
// Set on a window once its placement has been put back, so that hiding and showing it again
// (the tray, a dialog opened twice) keeps where the user has it now.
const char* const kPlacedProperty = "tavrenPlaced";
}  // namespace

WindowKeeper::WindowKeeper(Settings& settings, SettingsStore& store, QObject* parent)
    : QObject(parent), settings_(settings), store_(store) {
    opacity_ = settings_.values().windowOpacity();
    connect(&settings_, &Settings::changed, this, [this] {
        opacity_ = settings_.values().windowOpacity();
        applyOpacity();
    });
    connect(qApp, &QCoreApplication::aboutToQuit, this, &WindowKeeper::saveAll);
    qApp->installEventFilter(this);
}

WindowKeeper::~WindowKeeper() {
    qApp->removeEventFilter(this);
}

QString WindowKeeper::windowName(const QWidget* window) {
    if (!window->objectName().isEmpty()) {
        return window->objectName();
    }
    const QString className = QString::fromLatin1(window->metaObject()->className());
    return className.section(QLatin1String("::"), -1);
}

bool WindowKeeper::kept(const QWidget* window) {
    if (window == nullptr || !window->isWindow()) {
        return false;
    }
    const Qt::WindowType type = window->windowType();
    if (type != Qt::Window && type != Qt::Dialog) {
        return false;
    }
    if (window->windowFlags().testFlag(Qt::FramelessWindowHint)) {
        return false;  // overlays such as the capture rectangle cover the screen on purpose
    }
    // Qt's own boxes and choosers place themselves over the window that asked.
    return qobject_cast<const QMessageBox*>(window) == nullptr &&
           qobject_cast<const QInputDialog*>(window) == nullptr &&
           qobject_cast<const QFileDialog*>(window) == nullptr &&
           qobject_cast<const QColorDialog*>(window) == nullptr &&
           qobject_cast<const QProgressDialog*>(window) == nullptr;
}

bool WindowKeeper::eventFilter(QObject* watched, QEvent* event) {
    const QEvent::Type type = event->type();
    if (type != QEvent::Show && type != QEvent::Close && type != QEvent::Hide) {
        return false;
    }
    auto* window = qobject_cast<QWidget*>(watched);
    if (!kept(window)) {
        return false;
    }
    if (type == QEvent::Show) {
        if (!window->property(kPlacedProperty).toBool()) {
            window->setProperty(kPlacedProperty, true);
            firstShow(window);
        }
        window->setWindowOpacity(opacity_);
    } else if (window->isVisible() || type == QEvent::Hide) {
        save(window);
    }
    return false;
}

void WindowKeeper::firstShow(QWidget* window) {
    const QSize smallest =
        window->minimumSize().expandedTo(window->minimumSizeHint()).expandedTo(kSmallestWindow);
    window->setMinimumSize(smallest);
    const auto placement = WindowPlacement::load(store_, windowName(window));
    if (!placement || placement->width <= 0 || placement->height <= 0) {
        return;
    }
    QList<QRect> screens;
    if (const QScreen* primary = QGuiApplication::primaryScreen()) {
        screens << primary->availableGeometry();
    }
    for (const QScreen* screen : QGuiApplication::screens()) {
        if (screen != QGuiApplication::primaryScreen()) {
            screens << screen->availableGeometry();
        }
    }
    const QRect wanted(placement->left, placement->top, placement->width, placement->height);
    window->setGeometry(ScreenFit::fit(wanted, screens, smallest));
    if (placement->state == WindowPlacement::Maximized) {
        window->setWindowState(window->windowState() | Qt::WindowMaximized);
    }
}

void WindowKeeper::save(QWidget* window) {
    if (!kept(window) || !window->property(kPlacedProperty).toBool()) {
        return;  // never shown: there is nothing to remember
    }
    QRect normal = window->normalGeometry();
    if (normal.isEmpty()) {
        normal = window->geometry();
    }
    WindowPlacement placement;
    placement.left = normal.left();
    placement.top = normal.top();
    placement.width = normal.width();
    placement.height = normal.height();
    placement.state = window->isMaximized()   ? WindowPlacement::Maximized
                      : window->isMinimized() ? WindowPlacement::Minimized
                                              : WindowPlacement::Normal;
    placement.save(store_, windowName(window));
}

void WindowKeeper::saveAll() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->isVisible()) {
            save(window);
        }
    }
    store_.sync();
}

void WindowKeeper::previewOpacity(double opacity) {
    opacity_ = opacity;
    applyOpacity();
}

void WindowKeeper::applyOpacity() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (kept(window)) {
            window->setWindowOpacity(opacity_);
        }
    }
}

}  // namespace tavren
