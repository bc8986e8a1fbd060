#pragma once

#include "core/ui/FormDialog.h"

class QLineEdit;
class QSpinBox;

namespace tavren {

class GameSession;

// The table creation form: name (the member's name + "'s Table" to start with), seats, blinds,
// buy-in and an optional password. The name is checked here as the server checks it, so a
// refusal says why before anything is sent; Create stays in the form until then.
class GameCreateTable : public FormDialog {
    Q_OBJECT
  public:
    explicit GameCreateTable(GameSession& games, QWidget* parent = nullptr);

    // Fills the form afresh with its defaults.
    void reset();
    // Sends the request; false with the reason shown under the form when it cannot be sent.
    bool submit();
    void accept() override;

    QLineEdit* nameBox() const { return name_; }

  private:
    GameSession& games_;
    QLineEdit* name_ = nullptr;
    QSpinBox* seats_ = nullptr;
    QSpinBox* smallBlind_ = nullptr;
    QSpinBox* bigBlind_ = nullptr;
    QSpinBox* buyIn_ = nullptr;
    QLineEdit* password_ = nullptr;
};

}  // namespace tavren
