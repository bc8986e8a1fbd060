#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;

namespace tavren {

class RoomSession;

// The password prompt of a protected channel, opened when the server answers a join with its
// question. It says what the server said (the first ask, or that the password was wrong) and
// joins again with the password typed: (2, 4) channel ":" password.
class ChatPassword : public QDialog {
    Q_OBJECT
  public:
    ChatPassword(RoomSession& rooms, const QString& channel, QWidget* parent = nullptr);

    QString channel() const { return channel_; }
    // A new question for the same channel (a wrong password): the field is emptied.
    void ask(const QString& sentence);
    QString sentence() const;
    QLineEdit& passwordField() { return *password_; }
    // The join button; an empty password sends nothing.
    void accept() override;

  private:
    RoomSession& rooms_;
    QString channel_;
    QLabel* sentence_ = nullptr;
    QLineEdit* password_ = nullptr;
};

}  // namespace tavren
