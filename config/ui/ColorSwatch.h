#pragma once

#include <QFrame>

#include "config/WinColor.h"

namespace tavren {

// A clickable patch of colour. Clicking (or Space/Enter when focused) asks the owner to open the
// colour chooser; the swatch itself only shows what it is given.
class ColorSwatch : public QFrame {
    Q_OBJECT

  public:
    explicit ColorSwatch(QWidget* parent = nullptr);

    WinColor color() const { return color_; }
    void setColor(WinColor color);

  signals:
    void clicked();

  protected:
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    WinColor color_ = 0;
};

}  // namespace tavren
