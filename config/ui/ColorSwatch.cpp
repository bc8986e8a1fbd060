#include "config/ui/ColorSwatch.h"

#include <QKeyEvent>
#include <QMouseEvent>

namespace tavren {

ColorSwatch::ColorSwatch(QWidget* parent) : QFrame(parent) {
    setFrameShape(QFrame::Box);
    setFixedSize(44, 20);
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::StrongFocus);
    setToolTip(tr("Click to choose a colour"));
    setColor(0);
}

void ColorSwatch::setColor(WinColor color) {
    color_ = color;
    setStyleSheet(QStringLiteral("QFrame { background-color: %1; border: 1px solid #606060; }")
                      .arg(toQColor(color).name()));
}

void ColorSwatch::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint())) {
        emit clicked();
    }
}

void ColorSwatch::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Space || event->key() == Qt::Key_Return ||
        event->key() == Qt::Key_Enter) {
        emit clicked();
        return;
    }
    QFrame::keyPressEvent(event);
}

}  // namespace tavren
