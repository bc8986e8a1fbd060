#include "rooms/ui/RoomInputBox.h"

#include <QKeyEvent>

namespace tavren {

RoomInputBox::RoomInputBox(QWidget* parent) : QLineEdit(parent) {
    setMaxLength(kMaxLine);
    setPlaceholderText(tr("Type a message, or /help for the server's commands"));
}

void RoomInputBox::remember(const QString& line) {
    if (line.isEmpty()) {
        return;
    }
    if (history_.isEmpty() || history_.last() != line) {
        history_ << line;
    }
    while (history_.size() > kHistorySize) {
        history_.removeFirst();
    }
    position_ = static_cast<int>(history_.size());
    draft_.clear();
}

void RoomInputBox::insertCode(const QString& code) {
    // A code glued to the word before it would not be read as a smiley by everyone.
    const QString before = text().left(cursorPosition());
    insert(before.isEmpty() || before.endsWith(QLatin1Char(' ')) ? code : QLatin1Char(' ') + code);
    setFocus();
}

void RoomInputBox::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            emit submitted(text());
            return;
        case Qt::Key_Escape:
            emit leaveRequested();
            return;
        case Qt::Key_Up:
            DoHistory(-1);
            return;
        case Qt::Key_Down:
            DoHistory(1);
            return;
        default:
            QLineEdit::keyPressEvent(event);
    }
}

void RoomInputBox::DoHistory(int step) {
    const int size = static_cast<int>(history_.size());
    const int next = std::clamp(position_ + step, 0, size);
    if (next == position_) {
        return;
    }
    if (position_ == size) {
        draft_ = text();
    }
    position_ = next;
    setText(position_ == size ? draft_ : history_.at(position_));
}

}  // namespace tavren
