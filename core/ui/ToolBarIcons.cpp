#include "core/ui/ToolBarIcons.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QtMath>
#include <functional>

namespace tavren {

namespace {

// Every icon is drawn on a 16 by 16 grid and scaled; QIcon picks the nearest size for the
// screen's pixels, so a 24-point button on a doubled screen gets the 48-pixel drawing.
using Drawing = std::function<void(QPainter&)>;

QIcon drawn(const Drawing& draw) {
    QIcon icon;
    for (const int size : {16, 20, 24, 32, 40, 48, 64, 96}) {
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

QPainterPath bubble() {
    QPainterPath path;
    path.addRoundedRect(QRectF(1, 1.5, 14, 10), 3, 3);
    QPolygonF tail;
    tail << QPointF(4, 11) << QPointF(3.5, 15) << QPointF(8, 11);
    path.addPolygon(tail);
    path.setFillRule(Qt::WindingFill);
    return path.simplified();
}

void drawBubble(QPainter& painter, const QColor& fill) {
    painter.setPen(QPen(fill.darker(150), 0.8));
    painter.setBrush(fill);
    painter.drawPath(bubble());
}

}  // namespace

QIcon ToolBarIcons::logInOrOff() {
    return drawn([](QPainter& painter) {
        const QColor green(0x2e, 0xa0, 0x4f);
        QPen pen(green, 2.0, Qt::SolidLine, Qt::RoundCap);
        painter.setPen(pen);
        painter.setBrush(Qt::NoBrush);
        // An open ring with the bar through its gap: the usual power sign.
        painter.drawArc(QRectF(2.5, 3, 11, 11), 125 * 16, 290 * 16);
        painter.drawLine(QPointF(8, 1.5), QPointF(8, 8));
    });
}

QIcon ToolBarIcons::joinChannel() {
    return drawn([](QPainter& painter) {
        drawBubble(painter, QColor(0x2f, 0x6f, 0xc4));
        QPen pen(Qt::white, 1.1, Qt::SolidLine, Qt::RoundCap);
        painter.setPen(pen);
        painter.drawLine(QPointF(6.6, 3.6), QPointF(5.6, 9.4));
        painter.drawLine(QPointF(10.0, 3.6), QPointF(9.0, 9.4));
        painter.drawLine(QPointF(4.4, 5.4), QPointF(11.4, 5.4));
        painter.drawLine(QPointF(4.0, 7.6), QPointF(11.0, 7.6));
    });
}

QIcon ToolBarIcons::privateMessage() {
    return drawn([](QPainter& painter) {
        drawBubble(painter, QColor(0xd0, 0x7a, 0x1f));
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::white);
        painter.drawEllipse(QPointF(8, 4.9), 1.7, 1.7);
        QPainterPath shoulders;
        shoulders.moveTo(4.6, 10.2);
        shoulders.cubicTo(4.8, 6.9, 11.2, 6.9, 11.4, 10.2);
        shoulders.closeSubpath();
        painter.drawPath(shoulders);
    });
}

QIcon ToolBarIcons::settings() {
    return drawn([](QPainter& painter) {
        const QColor steel(0x5d, 0x67, 0x75);
        const QPointF centre(8, 8);
        QPolygonF wheel;
        constexpr int kTeeth = 8;
        for (int i = 0; i < kTeeth * 4; ++i) {
            // Each tooth is two points on the outer circle between two on the inner one.
            const bool outer = (i % 4) == 1 || (i % 4) == 2;
            const qreal radius = outer ? 7.2 : 5.4;
            const qreal angle = (i + 0.5) * 2 * M_PI / (kTeeth * 4);
            wheel << centre + QPointF(radius * qCos(angle), radius * qSin(angle));
        }
        QPainterPath path;
        path.addPolygon(wheel);
        path.closeSubpath();
        path.addEllipse(centre, 2.2, 2.2);
        path.setFillRule(Qt::OddEvenFill);
        painter.setPen(QPen(steel.darker(140), 0.6));
        painter.setBrush(steel);
        painter.drawPath(path);
    });
}

QIcon ToolBarIcons::connectedTime() {
    return drawn([](QPainter& painter) {
        const QColor ink(0x4a, 0x52, 0x5e);
        painter.setPen(QPen(ink, 1.3));
        painter.setBrush(Qt::white);
        painter.drawEllipse(QPointF(8, 8), 6.3, 6.3);
        painter.setPen(QPen(ink, 1.3, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QPointF(8, 8), QPointF(8, 4));
        painter.drawLine(QPointF(8, 8), QPointF(10.8, 9.6));
    });
}

QIcon ToolBarIcons::padlock(bool shut) {
    return drawn([shut](QPainter& painter) {
        const QColor body = shut ? QColor(0x2e, 0x8b, 0x57) : QColor(0x9a, 0xa0, 0xa6);
        const QColor ink = body.darker(150);
        // The shackle: closed into the body, or swung up and open to the right.
        painter.setPen(QPen(ink, 1.6, Qt::SolidLine, Qt::RoundCap));
        painter.setBrush(Qt::NoBrush);
        QPainterPath shackle;
        if (shut) {
            shackle.moveTo(4.8, 8);
            shackle.lineTo(4.8, 5.2);
            shackle.arcTo(QRectF(4.8, 1.8, 6.4, 6.4), 180, -180);
            shackle.lineTo(11.2, 8);
        } else {
            shackle.moveTo(8.8, 8);
            shackle.lineTo(8.8, 4.2);
            shackle.arcTo(QRectF(8.8, 0.8, 6.4, 6.4), 180, -180);
            shackle.lineTo(15.2, 5.5);
        }
        painter.drawPath(shackle);
        painter.setPen(QPen(ink, 1));
        painter.setBrush(body);
        painter.drawRoundedRect(QRectF(2.5, 7.5, 11, 7.5), 1.5, 1.5);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::white);
        painter.drawEllipse(QPointF(8, 10.6), 1.2, 1.2);
        painter.drawRect(QRectF(7.5, 10.6, 1, 2.6));
    });
}

}  // namespace tavren
