#pragma once

#include <QWidget>

#include "pm/PrivateChats.h"

class QLabel;
class QProgressBar;
class QPushButton;
class QToolButton;

namespace tavren {

class ChatPane;
class DirectLink;
class PmInputBox;

// The controls of one conversation: its pane, the two typing labels, the direct connection's
// link, its send button (`XPButton6`), picture and capture buttons and the progress of files
// going out and coming in, and the entry box with its smiley and send buttons. Only the selected
// conversation's tab is visible.
class PmTab : public QWidget {
    Q_OBJECT
  public:
    // The progress bars count in thousandths: a file of 4 GB overflows an int of bytes.
    static constexpr int kProgressSteps = 1000;

    // `dataRoot` holds the smiley pictures the pane may show.
    explicit PmTab(const QString& dataRoot, QWidget* parent = nullptr);

    ChatPane& pane() { return *pane_; }
    PmInputBox& input() { return *input_; }
    QLabel& ownStatus() { return *ownStatus_; }
    QLabel& peerStatus() { return *peerStatus_; }
    QPushButton& sendButton() { return *send_; }
    QLabel& directLink() { return *directLink_; }
    QPushButton& transferButton() { return *transfer_; }
    QPushButton& pictureButton() { return *picture_; }
    QPushButton& captureButton() { return *capture_; }
    QProgressBar& outProgress() { return *outProgress_; }
    QLabel& outLabel() { return *outLabel_; }
    QProgressBar& inProgress() { return *inProgress_; }
    QLabel& inLabel() { return *inLabel_; }

    // Shows the link's state, captions and progress; null: no link yet (nothing going on).
    void showLink(const DirectLink* link);
    void showProgress(const DirectLink* link);

    void setOwnTyping(TypingStatus status);
    void setPeerTyping(TypingStatus status);

  signals:
    // Enter or the send button.
    void sendRequested();
    void smileyRequested(QWidget* anchor);
    void paneMenuRequested(const QPoint& panePos);
    void directLinkClicked();
    void transferButtonClicked();
    void pictureRequested();
    void captureRequested();

  private:
    ChatPane* pane_ = nullptr;
    QLabel* ownStatus_ = nullptr;
    QLabel* peerStatus_ = nullptr;
    PmInputBox* input_ = nullptr;
    QToolButton* smileys_ = nullptr;
    QPushButton* send_ = nullptr;
    QLabel* directLink_ = nullptr;
    QPushButton* transfer_ = nullptr;
    QPushButton* picture_ = nullptr;
    QPushButton* capture_ = nullptr;
    QProgressBar* outProgress_ = nullptr;
    QLabel* outLabel_ = nullptr;
    QProgressBar* inProgress_ = nullptr;
    QLabel* inLabel_ = nullptr;
};

}  // namespace tavren
