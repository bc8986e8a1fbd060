#include "render/ui/PaneImageHandler.h"

#include <QPainter>
#include <QTextImageFormat>
#include <algorithm>

namespace tavren {

PaneImageHandler::PaneImageHandler(Lookup lookup, QObject* parent)
    : QObject(parent), lookup_(std::move(lookup)) {}

QSizeF PaneImageHandler::intrinsicSize(QTextDocument*, int, const QTextFormat& format) {
    const QTextImageFormat image = format.toImageFormat();
    const QImage picture = lookup_(image.name());
    const QSizeF natural =
        picture.isNull() ? QSizeF(BrokenSide, BrokenSide) : QSizeF(picture.deviceIndependentSize());
    const bool hasWidth = image.hasProperty(QTextFormat::ImageWidth) && image.width() > 0;
    const bool hasHeight = image.hasProperty(QTextFormat::ImageHeight) && image.height() > 0;
    QSizeF size = natural;
    if (hasWidth && hasHeight) {
        size = QSizeF(image.width(), image.height());
    } else if (hasWidth && natural.width() > 0) {
        size = QSizeF(image.width(), image.width() * natural.height() / natural.width());
    } else if (hasHeight && natural.height() > 0) {
        size = QSizeF(image.height() * natural.width() / natural.height(), image.height());
    }
    return QSizeF(std::clamp(size.width(), 0.0, MaxSide), std::clamp(size.height(), 0.0, MaxSide));
}

void PaneImageHandler::drawObject(QPainter* painter, const QRectF& rect, QTextDocument*, int,
                                  const QTextFormat& format) {
    const QImage picture = lookup_(format.toImageFormat().name());
    if (!picture.isNull()) {
        painter->drawImage(rect, picture);
        return;
    }
    painter->save();
    painter->setPen(QPen(Qt::gray, 1));
    painter->setBrush(Qt::NoBrush);
    const QRectF box = rect.adjusted(0.5, 0.5, -0.5, -0.5);
    painter->drawRect(box);
    painter->drawLine(box.topLeft(), box.bottomRight());
    painter->restore();
}

}  // namespace tavren
