#pragma once

#include <QWidget>

class QLabel;
class QPlainTextEdit;

namespace tavren {

class ErrorLog;

// The error window: the error log with its heading, shown and brought forward whenever a line is
// written. Closing it only hides it; the log keeps growing (bounded) while it is hidden.
class ChatError : public QWidget {
    Q_OBJECT
  public:
    explicit ChatError(ErrorLog& log, QWidget* parent = nullptr);

    QString headingText() const;
    QString logText() const;
    int caretPosition() const;

  private:
    void showLog(const QString& text, int caret);

    ErrorLog& log_;
    QLabel* heading_;
    QPlainTextEdit* text_;
};

}  // namespace tavren
