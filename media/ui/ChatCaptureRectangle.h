#pragma once

#include <QImage>
#include <QPoint>
#include <QWidget>

class QLabel;
class QRubberBand;
class QScreen;

namespace tavren {

// The screen-capture window: the whole screen, frozen as it was when the capture was asked for,
// above every other window, with a rubber band (`picRectangle`) that follows the pointer while
// the button is held.
//
// Releasing the button picks the rectangle between where it went down and where it came up, in
// whichever direction it was dragged (towards the top left just as well). A click without a drag
// (no width or no height) picks nothing: the window stays for another try. Enter or a double
// click picks the whole frozen screen; Esc closes the window without a capture.
class ChatCaptureRectangle : public QWidget {
    Q_OBJECT
  public:
    // `frozen` is the screen's picture; `screen` is where the window goes (null: the primary).
    explicit ChatCaptureRectangle(const QImage& frozen, QScreen* screen = nullptr,
                                  QWidget* parent = nullptr);

    // The picture of a whole screen as it is now (null when the platform gives none).
    static QImage grabScreen(QScreen* screen);

    QImage frozen() const { return frozen_; }
    // Shows the window over the whole screen, on top.
    void open();

  signals:
    // The chosen rectangle, in the frozen picture's pixels. The window closes after it.
    void selected(const QRect& area);
    void canceled();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    // A rectangle of the window in the picture's pixels.
    QRect toPicture(const QRect& logical) const;
    void finish(const QRect& area);

    QImage frozen_;
    QScreen* screen_;
    QLabel* picture_ = nullptr;
    QRubberBand* band_ = nullptr;
    QPoint start_;
    bool dragging_ = false;
    bool done_ = false;
};

}  // namespace tavren
