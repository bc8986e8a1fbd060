#pragma once

#include <QHash>
#include <QWidget>

#include "config/ColorScheme.h"

class QLabel;
class QFrame;
class QGridLayout;

namespace tavren {

// A miniature of a chat window in the chosen colours: the title and body areas, the chat pane
// with one line from another member, the channel host and oneself, the box to type in and the
// entry line. Clicking a surface asks for a new colour of that surface.
class ColorPreview : public QWidget {
    Q_OBJECT

  public:
    explicit ColorPreview(QWidget* parent = nullptr);

    // `title` is shown in the title line (the name of the scheme, or a placeholder).
    void setPreview(const ColorScheme& colors, bool boldNames, bool underlineNames,
                    const QString& title);

  signals:
    void surfaceClicked(ColorScheme::Field field);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QFrame* addSurface(QFrame* frame, ColorScheme::Field field, const QString& tip);
    QLabel* addChatLine(QGridLayout* grid, int row, const QString& nick, const QString& message,
                        QLabel** messageLabel);

    QHash<QObject*, ColorScheme::Field> surfaces_;
    QFrame* titleArea_;
    QLabel* titleLabel_;
    QFrame* bodyArea_;
    QLabel* bodyLabel_;
    QFrame* chatPane_;
    QFrame* sendBox_;
    QFrame* entryArea_;
    QLabel* entryLine_;
    QLabel* theirNick_;
    QLabel* theirText_;
    QLabel* hostNick_;
    QLabel* hostText_;
    QLabel* ownNick_;
    QLabel* ownText_;
};

}  // namespace tavren
