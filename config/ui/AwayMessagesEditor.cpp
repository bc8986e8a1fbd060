#include "config/ui/AwayMessagesEditor.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace tavren {

AwayMessagesEditor::AwayMessagesEditor(QWidget* parent) : QWidget(parent) {
    list_ = new QListWidget(this);
    name_ = new QLineEdit(this);
    name_->setObjectName(QStringLiteral("awayName"));
    text_ = new QPlainTextEdit(this);
    text_->setObjectName(QStringLiteral("Text2"));
    text_->setTabChangesFocus(true);
    text_->setMaximumHeight(90);
    auto* addButton = new QPushButton(tr("&New"), this);
    removeButton_ = new QPushButton(tr("&Remove"), this);

    auto* buttons = new QVBoxLayout;
    buttons->addWidget(addButton);
    buttons->addWidget(removeButton_);
    buttons->addStretch(1);
    auto* top = new QHBoxLayout;
    top->addWidget(list_, 1);
    top->addLayout(buttons);
    auto* fields = new QFormLayout;
    fields->addRow(tr("Name:"), name_);
    fields->addRow(tr("Message:"), text_);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(top, 1);
    layout->addLayout(fields);

    connect(addButton, &QPushButton::clicked, this, &AwayMessagesEditor::addMessage);
    connect(removeButton_, &QPushButton::clicked, this, &AwayMessagesEditor::removeSelected);
    connect(list_, &QListWidget::currentRowChanged, this, &AwayMessagesEditor::showSelected);
    connect(name_, &QLineEdit::textEdited, this, &AwayMessagesEditor::storeName);
    connect(text_, &QPlainTextEdit::textChanged, this, &AwayMessagesEditor::storeText);
    showSelected();
}

QList<AwayMessage> AwayMessagesEditor::messages() const {
    QList<AwayMessage> kept;
    for (const AwayMessage& message : messages_) {
        if (!message.name.trimmed().isEmpty() || !message.text.trimmed().isEmpty()) {
            kept << message;
        }
    }
    return kept;
}

void AwayMessagesEditor::setMessages(const QList<AwayMessage>& messages) {
    messages_ = messages;
    list_->clear();
    for (const AwayMessage& message : messages_) {
        list_->addItem(message.name);
    }
    list_->setCurrentRow(messages_.isEmpty() ? -1 : 0);
    showSelected();
}

void AwayMessagesEditor::addMessage() {
    messages_.append({tr("New Away Message.."), QString()});
    list_->addItem(messages_.last().name);
    list_->setCurrentRow(int(messages_.size()) - 1);
    name_->setFocus();
    name_->selectAll();
}

void AwayMessagesEditor::removeSelected() {
    const int row = list_->currentRow();
    if (row < 0 || row >= messages_.size()) {
        return;
    }
    messages_.removeAt(row);
    delete list_->takeItem(row);
    showSelected();
}

void AwayMessagesEditor::showSelected() {
    const int row = list_->currentRow();
    const bool chosen = row >= 0 && row < messages_.size();
    showing_ = true;
    name_->setText(chosen ? messages_[row].name : QString());
    text_->setPlainText(chosen ? messages_[row].text : QString());
    showing_ = false;
    name_->setEnabled(chosen);
    text_->setEnabled(chosen);
    removeButton_->setEnabled(chosen);
}

void AwayMessagesEditor::storeName(const QString& name) {
    const int row = list_->currentRow();
    if (row >= 0 && row < messages_.size()) {
        messages_[row].name = name;
        list_->item(row)->setText(name);
    }
}

void AwayMessagesEditor::storeText() {
    const int row = list_->currentRow();
    if (!showing_ && row >= 0 && row < messages_.size()) {
        messages_[row].text = text_->toPlainText();
    }
}

}  // namespace tavren
