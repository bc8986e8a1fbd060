#pragma once

#include <QLineEdit>
#include <QStringList>

namespace tavren {

// The line a member types into a channel. Enter hands the text on, Up and Down walk through
// the lines sent before, Esc asks to leave the channel.
class RoomInputBox : public QLineEdit {
    Q_OBJECT
  public:
    // The server takes lines of at most this many characters.
    static constexpr int kMaxLine = 2048;
    static constexpr int kHistorySize = 50;

    explicit RoomInputBox(QWidget* parent = nullptr);

    // Remembers a line that was sent, for Up and Down.
    void remember(const QString& line);
    void insertCode(const QString& code);

  signals:
    void submitted(const QString& text);
    void leaveRequested();

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void DoHistory(int step);

    QStringList history_;
    int position_ = 0;  // history_.size() means "the line being typed"
    QString draft_;
};

}  // namespace tavren
