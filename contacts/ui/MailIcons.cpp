#include "contacts/ui/MailIcons.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <functional>

namespace tavren {

namespace {

// Drawn on a 16 by 16 grid and scaled, so that QIcon has a sharp picture for every screen.
QIcon drawn(const std::function<void(QPainter&)>& draw) {
    QIcon icon;
    for (const int size : {16, 20, 24, 32, 48, 64}) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(size / 16.0, size / 16.0);
        draw(painter);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

}  // namespace

QIcon MailIcons::mailFull() {
    return drawn([](QPainter& painter) {
        const QRectF body(1, 4, 14, 10);
        painter.setPen(QPen(QColor(0x6b, 0x55, 0x2a), 0.9));
        painter.setBrush(QColor(0xf6, 0xe7, 0xb8));
        painter.drawRoundedRect(body, 1.2, 1.2);
        // The flap, closed.
        QPainterPath flap;
        flap.moveTo(1.4, 4.6);
        flap.lineTo(8, 9.6);
        flap.lineTo(14.6, 4.6);
        painter.setBrush(Qt::NoBrush);
        painter.drawPath(flap);
        // Something is waiting.
        painter.setPen(QPen(Qt::white, 0.8));
        painter.setBrush(QColor(0xd3, 0x2f, 0x2f));
        painter.drawEllipse(QPointF(12.6, 3.6), 3.0, 3.0);
    });
}

QIcon MailIcons::mailEmpty() {
    return drawn([](QPainter& painter) {
        painter.setPen(QPen(QColor(0x8a, 0x8a, 0x8a), 0.9));
        painter.setBrush(QColor(0xf2, 0xf2, 0xf2));
        // The flap, open above the envelope.
        QPainterPath flap;
        flap.moveTo(1.5, 7);
        flap.lineTo(8, 2);
        flap.lineTo(14.5, 7);
        flap.closeSubpath();
        painter.drawPath(flap);
        painter.drawRoundedRect(QRectF(1, 7, 14, 8), 1.2, 1.2);
        QPainterPath fold;
        fold.moveTo(1.4, 14.6);
        fold.lineTo(6.4, 10.4);
        fold.moveTo(14.6, 14.6);
        fold.lineTo(9.6, 10.4);
        painter.setBrush(Qt::NoBrush);
        painter.drawPath(fold);
    });
}

}  // namespace tavren
