#pragma once

#include <QLabel>
#include <QVector>
#include <QWidget>

#include "games/TableState.h"

namespace tavren {

// The table itself: the felt, the seats round it with each player's name label ("player: " +
// name), chips, bet and cards, the dealer button, the board, the pots, whose turn it is with
// the seconds left, and the last hand's winner. It only paints what the TableState says.
class TableView : public QWidget {
    Q_OBJECT
  public:
    explicit TableView(QWidget* parent = nullptr);

    void show(const TableState& state, const QString& ownName);
    void setSecondsLeft(int seconds);
    // The name label of a seat (null for a seat nobody holds), as BestHand reads them.
    QLabel* seatLabel(int seat) const;

    QSize minimumSizeHint() const override { return {640, 400}; }

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    QPointF seatCentre(int seat) const;
    QRectF feltRect() const;
    void placeLabels();

    TableState state_;
    QString ownName_;
    int secondsLeft_ = 0;
    QVector<QLabel*> labels_;
};

}  // namespace tavren
