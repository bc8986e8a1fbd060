#include "core/ui/ChatConsole.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/ServerConsole.h"

namespace tavren {

ChatConsole::ChatConsole(ServerConsole& console, QWidget* parent)
    : QWidget(parent, Qt::Window),
      console_(console),
      log_(new QPlainTextEdit(this)),
      input_(new QLineEdit(this)) {
    setObjectName(QStringLiteral("ChatConsole"));
    setWindowTitle(QStringLiteral("Tavren Server Console"));
    setMinimumSize(360, 220);
    resize(560, 340);
    log_->setObjectName(QStringLiteral("log"));
    log_->setReadOnly(true);
    log_->setMaximumBlockCount(ServerConsole::kMaxLines);
    // The log is for reading; Tab goes between the command line and Send.
    log_->setFocusPolicy(Qt::ClickFocus);
    input_->setObjectName(QStringLiteral("input"));
    input_->setPlaceholderText(QStringLiteral("Command for the server, e.g. /help"));

    auto* sendButton = new QPushButton(QStringLiteral("&Send"), this);
    sendButton->setObjectName(QStringLiteral("send"));
    auto* inputRow = new QHBoxLayout;
    inputRow->addWidget(input_);
    inputRow->addWidget(sendButton);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(log_, 1);
    layout->addLayout(inputRow);

    for (const QString& line : console_.lines()) {
        log_->appendPlainText(line);
    }
    connect(&console_, &ServerConsole::lineAdded, log_, &QPlainTextEdit::appendPlainText);
    connect(&console_, &ServerConsole::cleared, log_, &QPlainTextEdit::clear);
    connect(input_, &QLineEdit::returnPressed, this, &ChatConsole::send);
    connect(sendButton, &QPushButton::clicked, this, &ChatConsole::send);
    input_->setFocus(Qt::OtherFocusReason);
}

void ChatConsole::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    input_->setFocus(Qt::OtherFocusReason);
}

void ChatConsole::send() {
    if (console_.submit(input_->text())) {
        input_->clear();
    }
}

QString ChatConsole::logText() const {
    return log_->toPlainText();
}

}  // namespace tavren
