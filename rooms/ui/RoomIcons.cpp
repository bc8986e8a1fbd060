#include "rooms/ui/RoomIcons.h"

#include <QHash>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QtMath>

namespace tavren {

namespace {

constexpr int kSize = 32;  // drawn large, shown at 16 (and sharp at 200%)

QPixmap blank() {
    QPixmap pixmap(kSize, kSize);
    pixmap.fill(Qt::transparent);
    return pixmap;
}

QPainterPath star(QPointF centre, double outer, double inner) {
    QPainterPath path;
    for (int i = 0; i < 10; ++i) {
        const double radius = i % 2 == 0 ? outer : inner;
        const double angle = -M_PI / 2 + i * M_PI / 5;
        const QPointF point(centre.x() + radius * qCos(angle), centre.y() + radius * qSin(angle));
        if (i == 0) {
            path.moveTo(point);
        } else {
            path.lineTo(point);
        }
    }
    path.closeSubpath();
    return path;
}

// A member: a head and shoulders in slate blue.
QPixmap memberPicture() {
    QPixmap pixmap = blank();
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(0x2f, 0x4a, 0x6b), 1.5));
    painter.setBrush(QColor(0x7d, 0x9c, 0xc4));
    painter.drawEllipse(QRectF(10, 3, 12, 12));
    painter.drawRoundedRect(QRectF(5, 17, 22, 13), 6, 6);
    return pixmap;
}

// The channel host: a green disc with an "@".
QPixmap hostPicture() {
    QPixmap pixmap = blank();
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(0x1e, 0x6b, 0x2a), 1.5));
    painter.setBrush(QColor(0x4c, 0xb8, 0x5a));
    painter.drawEllipse(QRectF(2, 2, 28, 28));
    QFont font = painter.font();
    font.setPixelSize(20);
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(QRect(0, 0, kSize, kSize - 2), Qt::AlignCenter, QStringLiteral("@"));
    return pixmap;
}

// Staff: a star, bronze, silver or gold by rank.
QPixmap staffPicture(QColor fill, QColor edge) {
    QPixmap pixmap = blank();
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(edge, 1.5));
    painter.setBrush(fill);
    painter.drawPath(star(QPointF(16, 17), 15, 6.5));
    return pixmap;
}

QPixmap unreadPicture() {
    QPixmap pixmap = blank();
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(0xa3, 0x4a, 0x00), 1.5));
    painter.setBrush(QColor(0xff, 0x8c, 0x1a));
    painter.drawRoundedRect(QRectF(3, 6, 26, 18), 4, 4);
    painter.setBrush(QColor(0xff, 0xf4, 0xe0));
    painter.setPen(Qt::NoPen);
    for (int x : {9, 16, 23}) {
        painter.drawEllipse(QPointF(x, 15), 2.5, 2.5);
    }
    return pixmap;
}

}  // namespace

QIcon RoomIcons::rank(MemberRank::Icon icon) {
    static QHash<int, QIcon> cache;
    if (const auto found = cache.constFind(icon); found != cache.constEnd()) {
        return *found;
    }
    QPixmap picture;
    switch (icon) {
        case MemberRank::Member:
            picture = memberPicture();
            break;
        case MemberRank::Host:
            picture = hostPicture();
            break;
        case MemberRank::StaffThird:
            picture = staffPicture(QColor(0xcd, 0x7f, 0x32), QColor(0x7a, 0x48, 0x16));
            break;
        case MemberRank::StaffSecond:
            picture = staffPicture(QColor(0xc8, 0xcc, 0xd2), QColor(0x6b, 0x70, 0x78));
            break;
        case MemberRank::StaffHighest:
            picture = staffPicture(QColor(0xff, 0xcc, 0x1a), QColor(0x9a, 0x73, 0x00));
            break;
    }
    return cache.insert(icon, QIcon(picture)).value();
}

QIcon RoomIcons::unread() {
    static const QIcon icon(unreadPicture());
    return icon;
}

}  // namespace tavren
