#pragma once

#include <QList>
#include <QWidget>

#include "contacts/AwayMessages.h"

class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;

namespace tavren {

// Edits the away messages: the names in a list, and the name and text of the chosen one below
// it. Edits apply to the chosen message as they are typed.
class AwayMessagesEditor : public QWidget {
    Q_OBJECT

  public:
    explicit AwayMessagesEditor(QWidget* parent = nullptr);

    // The edited list without messages left entirely blank.
    QList<AwayMessage> messages() const;
    void setMessages(const QList<AwayMessage>& messages);

    QListWidget* list() const { return list_; }
    QLineEdit* nameEdit() const { return name_; }
    QPlainTextEdit* textEdit() const { return text_; }

  public slots:
    void addMessage();
    void removeSelected();

  private:
    void showSelected();
    void storeName(const QString& name);
    void storeText();

    QList<AwayMessage> messages_;
    QListWidget* list_;
    QLineEdit* name_;
    QPlainTextEdit* text_;
    QPushButton* removeButton_;
    bool showing_ = false;  // filling the boxes, not the user typing
};

}  // namespace tavren
