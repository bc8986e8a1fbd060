#pragma once

#include <QDialog>

class QCheckBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;

namespace tavren {

class ChannelCreation;
class Prompter;
class ServerLink;

// The creation form: name, topic, the password option and the password. Its button runs the
// checks (a failed one shows its message and leaves the form as it was), then the progress
// display, then sends the request and closes. The server's answer opens the channel's tab, or
// says in a notice why not.
class ChatCreate : public QDialog {
    Q_OBJECT
  public:
    ChatCreate(ServerLink& link, Prompter& prompter, QWidget* parent = nullptr);
    ~ChatCreate() override;

    ChannelCreation& creation() { return *creation_; }
    // The create button.
    void create();
    // Closing the form while the progress runs sends nothing.
    void reject() override;

  private:
    void resetProgress();

    ChannelCreation* creation_;
    Prompter& prompter_;
    QLineEdit* name_ = nullptr;
    QLineEdit* topic_ = nullptr;
    QCheckBox* isPass_ = nullptr;
    QLineEdit* password_ = nullptr;
    QProgressBar* progress_ = nullptr;
    QLabel* label_ = nullptr;
    QPushButton* createButton_ = nullptr;
};

}  // namespace tavren
