#include "core/ui/AppIcon.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace tavren {

QIcon AppIcon::make(bool online) {
    QIcon icon;
    for (const int size : {16, 24, 32, 48, 64}) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        const qreal unit = size / 16.0;
        QPainterPath bubble;
        bubble.addRoundedRect(QRectF(1 * unit, 1.5 * unit, 14 * unit, 10 * unit), 3 * unit,
                              3 * unit);
        QPolygonF tail;
        tail << QPointF(4 * unit, 11 * unit) << QPointF(3.5 * unit, 15 * unit)
             << QPointF(8 * unit, 11 * unit);
        bubble.addPolygon(tail);
        bubble.setFillRule(Qt::WindingFill);
        const QColor fill = online ? QColor(0x2e, 0xa0, 0x4f) : QColor(0x8a, 0x8f, 0x98);
        painter.setPen(QPen(fill.darker(150), unit * 0.8));
        painter.setBrush(fill);
        painter.drawPath(bubble.simplified());
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::white);
        for (int dot = 0; dot < 3; ++dot) {
            painter.drawEllipse(QPointF((4.5 + dot * 3.5) * unit, 6.5 * unit), 1.1 * unit,
                                1.1 * unit);
        }
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

}  // namespace tavren
