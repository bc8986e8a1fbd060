#include "core/ui/ChatError.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextCursor>
#include <QVBoxLayout>

#include "core/ErrorLog.h"

namespace tavren {

ChatError::ChatError(ErrorLog& log, QWidget* parent)
    : QWidget(parent, Qt::Window),
      log_(log),
      heading_(new QLabel(this)),
      text_(new QPlainTextEdit(this)) {
    setObjectName(QStringLiteral("ChatError"));
    setWindowTitle(QStringLiteral("Tavren Errors"));
    setMinimumSize(320, 200);
    resize(460, 260);
    heading_->setObjectName(QStringLiteral("heading"));
    heading_->setStyleSheet(QStringLiteral("font-weight: bold"));
    text_->setObjectName(QStringLiteral("log"));
    text_->setReadOnly(true);
    text_->setLineWrapMode(QPlainTextEdit::WidgetWidth);

    auto* clear = new QPushButton(QStringLiteral("C&lear"), this);
    auto* close = new QPushButton(QStringLiteral("&Close"), this);
    connect(clear, &QPushButton::clicked, &log_, &ErrorLog::clear);
    connect(close, &QPushButton::clicked, this, &QWidget::hide);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(clear);
    buttons->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(heading_);
    layout->addWidget(text_);
    layout->addLayout(buttons);

    heading_->setText(log_.heading());
    showLog(log_.text(), 0);
    connect(&log_, &ErrorLog::headingChanged, heading_, &QLabel::setText);
    connect(&log_, &ErrorLog::textChanged, this, &ChatError::showLog);
    connect(&log_, &ErrorLog::shown, this, [this] {
        show();
        raise();
    });
}

void ChatError::showLog(const QString& text, int caret) {
    // The log keeps CR LF line ends; the text box wants bare line feeds.
    QString shown = text;
    shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    const int shownCaret =
        static_cast<int>(QStringView(text).left(caret).count(QStringLiteral("\r\n")));
    text_->setPlainText(shown);
    QTextCursor cursor = text_->textCursor();
    cursor.setPosition(std::clamp(caret - shownCaret, 0, static_cast<int>(shown.size())));
    text_->setTextCursor(cursor);
    text_->ensureCursorVisible();
}

QString ChatError::headingText() const {
    return heading_->text();
}
QString ChatError::logText() const {
    return text_->toPlainText();
}
int ChatError::caretPosition() const {
    return text_->textCursor().position();
}

}  // namespace tavren
