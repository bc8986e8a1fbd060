#include "contacts/ui/BuddyIcons.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace tavren {

namespace {

constexpr int kSize = 32;  // drawn large, shown at 16 (and sharp at 200%)

QPixmap blank() {
    QPixmap pixmap(kSize, kSize);
    pixmap.fill(Qt::transparent);
    return pixmap;
}

// A person: head and shoulders, in the colour that says how reachable the buddy is.
void drawPerson(QPainter& painter, QColor fill, QColor edge) {
    painter.setPen(QPen(edge, 1.5));
    painter.setBrush(fill);
    painter.drawEllipse(QRectF(9, 2, 13, 13));
    painter.drawRoundedRect(QRectF(4, 17, 23, 13), 6, 6);
}

QPixmap onlinePicture() {
    QPixmap pixmap = blank();
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    drawPerson(painter, QColor(0x4c, 0xb8, 0x5a), QColor(0x1e, 0x6b, 0x2a));
    return pixmap;
}

QPixmap offlinePicture() {
    QPixmap pixmap = blank();
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    drawPerson(painter, QColor(0xd4, 0xd6, 0xd9), QColor(0x8a, 0x8f, 0x96));
    return pixmap;
}

// Online but away or idle: the person in amber with a small clock at the shoulder.
QPixmap unavailablePicture() {
    QPixmap pixmap = blank();
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    drawPerson(painter, QColor(0xf5, 0xb7, 0x2e), QColor(0x9a, 0x62, 0x00));
    const QPointF centre(23, 23);
    painter.setPen(QPen(QColor(0x5a, 0x3a, 0x00), 1.5));
    painter.setBrush(Qt::white);
    painter.drawEllipse(centre, 8, 8);
    painter.setPen(QPen(QColor(0x5a, 0x3a, 0x00), 2, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(centre, centre + QPointF(0, -5));
    painter.drawLine(centre, centre + QPointF(4, 0));
    return pixmap;
}

// A solid triangle pointing down (open folder) or right (closed folder).
QPixmap folderPicture(bool expanded) {
    QPixmap pixmap = blank();
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath arrow;
    if (expanded) {
        arrow.moveTo(7, 11);
        arrow.lineTo(25, 11);
        arrow.lineTo(16, 23);
    } else {
        arrow.moveTo(11, 7);
        arrow.lineTo(23, 16);
        arrow.lineTo(11, 25);
    }
    arrow.closeSubpath();
    painter.setPen(QPen(QColor(0x2f, 0x4a, 0x6b), 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(QColor(0x4a, 0x6f, 0x9c));
    painter.drawPath(arrow);
    return pixmap;
}

}  // namespace

QIcon BuddyIcons::presence(BuddyPresence::Image image) {
    static const QIcon online(onlinePicture());
    static const QIcon offline(offlinePicture());
    static const QIcon unavailable(unavailablePicture());
    switch (image) {
        case BuddyPresence::Image::Online:
            return online;
        case BuddyPresence::Image::Offline:
            return offline;
        case BuddyPresence::Image::Unavailable:
            return unavailable;
    }
    return offline;
}

QIcon BuddyIcons::folder(bool expanded) {
    static const QIcon down(folderPicture(true));
    static const QIcon right(folderPicture(false));
    return expanded ? down : right;
}

}  // namespace tavren
