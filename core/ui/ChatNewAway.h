#pragma once

#include <QDialog>

class QCheckBox;
class QLineEdit;

namespace tavren {

class AwayMessages;
class AwayStatus;
class Prompter;

// "New Away Message": a name and a text, and whether to keep the message in the away list.
// OK goes away with it at once.
class ChatNewAway : public QDialog {
    Q_OBJECT
  public:
    ChatNewAway(AwayStatus& status, AwayMessages& saved, Prompter& prompter,
                QWidget* parent = nullptr);

    void accept() override;

  private:
    AwayStatus& status_;
    AwayMessages& saved_;
    Prompter& prompter_;
    QLineEdit* name_;
    QLineEdit* text_;
    QCheckBox* keep_;
};

}  // namespace tavren
