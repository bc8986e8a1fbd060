#pragma once

#include <QWidget>

class QPushButton;
class QTreeWidget;

namespace tavren {

class GameSession;
class SettingsStore;

// The table lobby: every open table with its players, seats, blinds, buy-in and whether it asks
// for a password; join one (double-click or Join), create one, or ask for the list again. The
// column widths are kept under "tablecolumn" + column number.
class gameList : public QWidget {
    Q_OBJECT
  public:
    gameList(GameSession& games, SettingsStore& store, QWidget* parent = nullptr);

    QTreeWidget* list() const { return list_; }
    // Asks the server for the list.
    void refresh();

  signals:
    // A table was picked; `locked` when it asks for a password.
    void joinRequested(const QString& table, bool locked);
    void createRequested();

  private:
    void fill();
    void joinSelected();

    GameSession& games_;
    SettingsStore& store_;
    QTreeWidget* list_ = nullptr;
    QPushButton* join_ = nullptr;
};

}  // namespace tavren
