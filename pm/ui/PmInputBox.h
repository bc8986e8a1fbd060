#pragma once

#include <QList>
#include <QPlainTextEdit>
#include <QUrl>

#include "pm/PrivateChats.h"

namespace tavren {

// The entry box of one conversation. Enter sends, Shift+Enter starts a new line. Every change
// of its text is reported as growing or shrinking, which is what the member's typing status
// is made of (whether it came from keys, a paste or a smiley). Files dropped on it are handed on
// to be sent, not written into the box.
class PmInputBox : public QPlainTextEdit {
    Q_OBJECT
  public:
    static constexpr int kVisibleLines = 3;

    explicit PmInputBox(QWidget* parent = nullptr);

    QString text() const { return toPlainText(); }
    void insertCode(const QString& code);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  signals:
    void submitted();
    void edited(PrivateChats::Edit edit, bool hasText);
    // Local files (or folders) dropped on the box, all of them: refusing is the receiver's part.
    void filesDropped(const QList<QUrl>& urls);

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    int heightFor(int lines) const;

    qsizetype lastLength_ = 0;
};

}  // namespace tavren
