#pragma once

#include "core/ui/FormDialog.h"

class QComboBox;
class QLineEdit;

namespace tavren {

class GameSession;

// Invites a member to one of the tables the member sits at (7, 9).
class GameInvite : public FormDialog {
    Q_OBJECT
  public:
    explicit GameInvite(GameSession& games, QWidget* parent = nullptr);

    // Fills in a member and, when given, the table to invite to.
    void prepare(const QString& user, const QString& table = QString());
    bool submit();
    void accept() override;

    QLineEdit* userBox() const { return user_; }
    QComboBox* tableBox() const { return table_; }

  private:
    GameSession& games_;
    QLineEdit* user_ = nullptr;
    QComboBox* table_ = nullptr;
};

}  // namespace tavren
