#pragma once

#include <QTimer>
#include <QWidget>

#include "render/LineTargets.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSlider;
class QSpinBox;

namespace tavren {

class ChatPane;
class GameSession;
class TableView;

// The table window of one table: the table with its seats and cards, whose turn it is with a
// countdown, the member's own hand in words, the moves (fold, check or call, bet or raise with
// a slider and an amount box, all in), sitting out, leaving, inviting, and the table's chat
// pane. It observes the GameSession and forwards the member's moves to it.
class Game : public QWidget, public TableLineTarget {
    Q_OBJECT
  public:
    Game(GameSession& games, const QString& table, const QString& dataRoot,
         QWidget* parent = nullptr);
    ~Game() override;

    QString table() const { return table_; }
    // Appends a formatted line to the chat pane.
    void AddChat2(const QString& html) override;

    TableView* view() const { return view_; }
    ChatPane* pane() const { return pane_; }
    QPushButton* foldButton() const { return fold_; }
    QPushButton* callButton() const { return call_; }
    QPushButton* raiseButton() const { return raise_; }
    QPushButton* allInButton() const { return allIn_; }
    QSpinBox* amountBox() const { return amount_; }
    QSlider* amountSlider() const { return slider_; }
    QLabel* ownHandLabel() const { return ownHand_; }
    QLabel* turnLabel() const { return turn_; }

  signals:
    void inviteRequested(const QString& table);

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    void refresh();
    void tick();
    void sendChat();
    void setAmount(int amount);

    GameSession& games_;
    QString table_;
    TableView* view_ = nullptr;
    ChatPane* pane_ = nullptr;
    QLineEdit* input_ = nullptr;
    QLabel* turn_ = nullptr;
    QLabel* ownHand_ = nullptr;
    QPushButton* fold_ = nullptr;
    QPushButton* call_ = nullptr;
    QPushButton* raise_ = nullptr;
    QPushButton* allIn_ = nullptr;
    QSlider* slider_ = nullptr;
    QSpinBox* amount_ = nullptr;
    QCheckBox* sitOut_ = nullptr;
    QTimer clock_;
    int secondsLeft_ = 0;
    bool leaving_ = false;
};

}  // namespace tavren
