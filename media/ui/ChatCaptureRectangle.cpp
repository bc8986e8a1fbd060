#include "media/ui/ChatCaptureRectangle.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPixmap>
#include <QRubberBand>
#include <QScreen>
#include <QVBoxLayout>

namespace tavren {

namespace {

// The rectangle between two pointer positions, whichever way it was dragged: as wide and high
// as the pointer moved, so a click without a move is empty.
QRect spanned(QPoint a, QPoint b) {
    return QRect(qMin(a.x(), b.x()), qMin(a.y(), b.y()), qAbs(b.x() - a.x()), qAbs(b.y() - a.y()));
}

}  // namespace

ChatCaptureRectangle::ChatCaptureRectangle(const QImage& frozen, QScreen* screen, QWidget* parent)
    : QWidget(parent, Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::Tool),
      frozen_(frozen),
      screen_(screen != nullptr ? screen : QGuiApplication::primaryScreen()) {
    setObjectName(QStringLiteral("ChatCaptureRectangle"));
    setWindowTitle(tr("Screen Capture"));
    setAttribute(Qt::WA_DeleteOnClose);
    picture_ = new QLabel(this);
    picture_->setObjectName(QStringLiteral("Picture1"));
    QPixmap shown = QPixmap::fromImage(frozen_);
    // A screen with a scale factor gives a picture with more pixels than the window has points.
    if (screen_ != nullptr) {
        shown.setDevicePixelRatio(screen_->devicePixelRatio());
    }
    picture_->setPixmap(shown);
    picture_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    picture_->setCursor(Qt::CrossCursor);
    picture_->installEventFilter(this);
    picture_->setToolTip(
        tr("Drag over the part of the screen to send; Enter sends all of it, "
           "Esc cancels"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(picture_);
    band_ = new QRubberBand(QRubberBand::Rectangle, picture_);
    band_->setObjectName(QStringLiteral("picRectangle"));
    band_->hide();
    setFocusPolicy(Qt::StrongFocus);
}

QImage ChatCaptureRectangle::grabScreen(QScreen* screen) {
    QScreen* from = screen != nullptr ? screen : QGuiApplication::primaryScreen();
    if (from == nullptr) {
        return {};
    }
    return from->grabWindow(0).toImage();
}

void ChatCaptureRectangle::open() {
    if (screen_ != nullptr) {
        setGeometry(screen_->geometry());
    }
    showFullScreen();
    raise();
    activateWindow();
    setFocus();
}

QRect ChatCaptureRectangle::toPicture(const QRect& logical) const {
    const qreal ratio = screen_ != nullptr ? screen_->devicePixelRatio() : 1.0;
    const QRect scaled(QPoint(qRound(logical.left() * ratio), qRound(logical.top() * ratio)),
                       QSize(qRound(logical.width() * ratio), qRound(logical.height() * ratio)));
    return scaled.intersected(frozen_.rect());
}

void ChatCaptureRectangle::finish(const QRect& area) {
    if (done_) {
        return;
    }
    done_ = true;
    band_->hide();
    hide();
    emit selected(area);
    close();
}

bool ChatCaptureRectangle::eventFilter(QObject* watched, QEvent* event) {
    if (watched != picture_) {
        return QWidget::eventFilter(watched, event);
    }
    switch (event->type()) {
        case QEvent::MouseButtonPress: {
            const auto* mouse = static_cast<QMouseEvent*>(event);
            if (mouse->button() == Qt::LeftButton) {
                start_ = mouse->position().toPoint();
                dragging_ = true;
                band_->setGeometry(QRect(start_, QSize()));
                band_->show();
            }
            return true;
        }
        case QEvent::MouseMove: {
            if (dragging_) {
                const auto* mouse = static_cast<QMouseEvent*>(event);
                band_->setGeometry(spanned(start_, mouse->position().toPoint()));
            }
            return true;
        }
        case QEvent::MouseButtonRelease: {
            const auto* mouse = static_cast<QMouseEvent*>(event);
            if (!dragging_ || mouse->button() != Qt::LeftButton) {
                return true;
            }
            dragging_ = false;
            const QPoint end = mouse->position().toPoint();
            // Dragged in any direction, the same rectangle; a click picks nothing.
            const QRect logical = spanned(start_, end);
            if (logical.isEmpty()) {
                band_->hide();
                return true;
            }
            const QRect area = toPicture(logical);
            if (area.isEmpty()) {
                band_->hide();
                return true;
            }
            finish(area);
            return true;
        }
        case QEvent::MouseButtonDblClick:
            finish(frozen_.rect());
            return true;
        default:
            return QWidget::eventFilter(watched, event);
    }
}

void ChatCaptureRectangle::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        done_ = true;
        emit canceled();
        close();
        return;
    }
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        finish(frozen_.rect());
        return;
    }
    QWidget::keyPressEvent(event);
}

}  // namespace tavren
