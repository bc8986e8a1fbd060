#include "pm/ui/PmInputBox.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QTextBlock>

namespace tavren {

PmInputBox::PmInputBox(QWidget* parent) : QPlainTextEdit(parent) {
    setTabChangesFocus(true);
    setPlaceholderText(tr("Type a message and press Enter (Shift+Enter for a new line)"));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(this, &QPlainTextEdit::textChanged, this, [this] {
        const qsizetype length = toPlainText().size();
        if (length == lastLength_) {
            return;
        }
        const PrivateChats::Edit edit =
            length > lastLength_ ? PrivateChats::Edit::Grew : PrivateChats::Edit::Shrank;
        lastLength_ = length;
        emit edited(edit, length > 0);
    });
}

void PmInputBox::insertCode(const QString& code) {
    // A code glued to the word before it would not be read as a smiley by everyone.
    QTextCursor cursor = textCursor();
    const QString before = cursor.block().text().left(cursor.positionInBlock());
    cursor.insertText(
        before.isEmpty() || before.endsWith(QLatin1Char(' ')) ? code : QLatin1Char(' ') + code);
    setTextCursor(cursor);
    setFocus();
}

int PmInputBox::heightFor(int lines) const {
    const int frame = 2 * frameWidth();
    const int margins = static_cast<int>(2 * document()->documentMargin());
    return fontMetrics().lineSpacing() * lines + frame + margins + contentsMargins().top() +
           contentsMargins().bottom();
}

QSize PmInputBox::sizeHint() const {
    return {QPlainTextEdit::sizeHint().width(), heightFor(kVisibleLines)};
}

QSize PmInputBox::minimumSizeHint() const {
    return {120, heightFor(kVisibleLines)};
}

void PmInputBox::keyPressEvent(QKeyEvent* event) {
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && !(event->modifiers() & Qt::ShiftModifier)) {
        emit submitted();
        return;
    }
    QPlainTextEdit::keyPressEvent(event);
}

namespace {

bool holdsLocalFiles(const QMimeData* data) {
    if (data == nullptr || !data->hasUrls() || data->urls().isEmpty()) {
        return false;
    }
    for (const QUrl& url : data->urls()) {
        if (!url.isLocalFile()) {
            return false;
        }
    }
    return true;
}

}  // namespace

void PmInputBox::dragEnterEvent(QDragEnterEvent* event) {
    if (holdsLocalFiles(event->mimeData())) {
        event->acceptProposedAction();
        return;
    }
    QPlainTextEdit::dragEnterEvent(event);
}

void PmInputBox::dragMoveEvent(QDragMoveEvent* event) {
    if (holdsLocalFiles(event->mimeData())) {
        event->acceptProposedAction();
        return;
    }
    QPlainTextEdit::dragMoveEvent(event);
}

void PmInputBox::dropEvent(QDropEvent* event) {
    if (holdsLocalFiles(event->mimeData())) {
        event->acceptProposedAction();
        emit filesDropped(event->mimeData()->urls());
        return;
    }
    QPlainTextEdit::dropEvent(event);
}

}  // namespace tavren
