#pragma once

#include <QImage>
#include <QObject>
#include <QTextObjectInterface>
#include <functional>

namespace tavren {

// Draws the images of a chat pane in place of Qt's own image handler. Qt's handler, when a
// picture cannot be had from the document, loads the `src` text as a file name itself; chat
// markup comes from other members, so here every picture comes from `lookup` (which knows only
// the smiley files) and anything else is drawn as a small broken-picture box.
class PaneImageHandler : public QObject, public QTextObjectInterface {
    Q_OBJECT
    Q_INTERFACES(QTextObjectInterface)

  public:
    // A width or height attribute larger than this is cut down to it.
    static constexpr qreal MaxSide = 2048;
    static constexpr qreal BrokenSide = 16;

    using Lookup = std::function<QImage(const QString& source)>;
    explicit PaneImageHandler(Lookup lookup, QObject* parent = nullptr);

    QSizeF intrinsicSize(QTextDocument* document, int position, const QTextFormat& format) override;
    void drawObject(QPainter* painter, const QRectF& rect, QTextDocument* document, int position,
                    const QTextFormat& format) override;

  private:
    Lookup lookup_;
};

}  // namespace tavren
