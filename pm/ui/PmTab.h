#pragma once

#include <QWidget>

#include "pm/PrivateChats.h"

class QLabel;
class QPushButton;
class QToolButton;

namespace tavren {

class ChatPane;
class PmInputBox;

// The controls of one conversation: its pane, the two typing labels and the entry box with its
// smiley and send buttons. Only the selected conversation's tab is visible.
class PmTab : public QWidget {
    Q_OBJECT
  public:
    // `dataRoot` holds the smiley pictures the pane may show.
    explicit PmTab(const QString& dataRoot, QWidget* parent = nullptr);

    ChatPane& pane() { return *pane_; }
    PmInputBox& input() { return *input_; }
    QLabel& ownStatus() { return *ownStatus_; }
    QLabel& peerStatus() { return *peerStatus_; }
    QPushButton& sendButton() { return *send_; }

    void setOwnTyping(TypingStatus status);
    void setPeerTyping(TypingStatus status);

  signals:
    // Enter or the send button.
    void sendRequested();
    void smileyRequested(QWidget* anchor);
    void paneMenuRequested(const QPoint& panePos);

  private:
    ChatPane* pane_ = nullptr;
    QLabel* ownStatus_ = nullptr;
    QLabel* peerStatus_ = nullptr;
    PmInputBox* input_ = nullptr;
    QToolButton* smileys_ = nullptr;
    QPushButton* send_ = nullptr;
};

}  // namespace tavren
