#pragma once

#include <QStringList>
#include <QWidget>

class QPushButton;
class QToolButton;
class QTreeWidget;

namespace tavren {

class ChatPane;
class RoomInputBox;

// The three controls of one channel: the conversation pane, the member list and the input box
// (with its smiley and send buttons). Only the selected channel's tab is visible.
class RoomTab : public QWidget {
    Q_OBJECT
  public:
    // `dataRoot` holds the smiley pictures the pane may show.
    explicit RoomTab(const QString& dataRoot, QWidget* parent = nullptr);

    ChatPane& pane() { return *pane_; }
    RoomInputBox& input() { return *input_; }
    QTreeWidget& memberList() { return *members_; }

    // Shows the names in the server's order, each with its rank icon; sub-item 1 holds the
    // name without rank marks.
    void setMembers(const QStringList& listedNames);
    int memberCount() const;

  signals:
    // Enter or the send button.
    void sendRequested(const QString& text);
    // Esc in the input box or the member list.
    void leaveRequested();
    void smileyRequested(QWidget* anchor);
    void memberMenuRequested(const QString& listedName, const QPoint& globalPos);
    void memberActivated(const QString& listedName);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    ChatPane* pane_ = nullptr;
    QTreeWidget* members_ = nullptr;
    RoomInputBox* input_ = nullptr;
    QToolButton* smileys_ = nullptr;
    QPushButton* send_ = nullptr;
};

}  // namespace tavren
