#include "core/ui/ChatConsole.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QVBoxLayout>

#include "core/ServerConsole.h"

namespace tavren {

ChatConsole::ChatConsole(ServerConsole& console, QWidget* parent)
    : QWidget(parent, Qt::Window),
      console_(console),
      log_(new QPlainTextEdit(this)),
      list_(new QListWidget(this)),
      input_(new QLineEdit(this)) {
    setObjectName(QStringLiteral("ChatConsole"));
    setWindowTitle(QStringLiteral("Tavren Server Console"));
    resize(520, 320);
    log_->setObjectName(QStringLiteral("log"));
    log_->setReadOnly(true);
    log_->setMaximumBlockCount(ServerConsole::kMaxLines);
    list_->setObjectName(QStringLiteral("list"));
    input_->setObjectName(QStringLiteral("input"));
    input_->setPlaceholderText(QStringLiteral("Command for the server, e.g. /help"));

    auto* splitter = new QSplitter(this);
    splitter->addWidget(log_);
    splitter->addWidget(list_);
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 1);
    auto* sendButton = new QPushButton(QStringLiteral("&Send"), this);
    auto* inputRow = new QHBoxLayout;
    inputRow->addWidget(input_);
    inputRow->addWidget(sendButton);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(splitter);
    layout->addLayout(inputRow);

    for (const QString& line : console_.lines()) {
        log_->appendPlainText(line);
    }
    list_->addItems(console_.list());
    connect(&console_, &ServerConsole::lineAdded, log_, &QPlainTextEdit::appendPlainText);
    connect(&console_, &ServerConsole::cleared, log_, &QPlainTextEdit::clear);
    connect(&console_, &ServerConsole::listUpdated, this, [this](const QStringList& items) {
        list_->clear();
        list_->addItems(items);
    });
    connect(input_, &QLineEdit::returnPressed, this, &ChatConsole::send);
    connect(sendButton, &QPushButton::clicked, this, &ChatConsole::send);
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
