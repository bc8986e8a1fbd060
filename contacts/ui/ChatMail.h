#pragma once

#include <QHash>
#include <QMainWindow>

class QAction;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QTabWidget;
class QTreeWidget;

namespace tavren {

class ChatPane;
class ClientSession;
class Mailbox;
class Prompter;

// The mail window: the inbox list (List1) above the reading pane (WebBrowser1) on the first
// tab, captioned "Inbox (n)", and the compose form (ToField, Subject, Message, the send button
// Command1) on the second. Reply, forward and delete work on the rows chosen in the list. The
// window only shows the mailbox and hands the member's actions to it.
class ChatMail : public QMainWindow {
    Q_OBJECT
  public:
    ChatMail(ClientSession& session, Prompter& prompter, QWidget* parent = nullptr);

    QAction* action(const QString& name) const { return actions_.value(name); }
    QTreeWidget& list() const { return *list_; }
    ChatPane& pane() const { return *pane_; }
    QTabWidget& tabs() const { return *tabs_; }
    QLineEdit& toField() const { return *toField_; }
    QLineEdit& subject() const { return *subject_; }
    QPlainTextEdit& message() const { return *message_; }

    // Shows the inbox, or an empty message to this member (names separated by commas).
    void showInbox();
    void composeTo(const QString& names);

    void reply();
    void forward();
    void deleteSelected();
    void send();

  private:
    void buildMenus();
    QWidget* buildInbox();
    QWidget* buildCompose();
    void rebuildList();
    void showCurrent();
    void showEmptyPane();
    void updateCommands();
    // The position in the mailbox of the row the member is reading, or -1.
    int currentRow() const;
    QAction* addCommand(class QMenu* menu, const QString& name, const QString& caption);

    ClientSession& session_;
    Mailbox& mailbox_;
    Prompter& prompter_;
    QHash<QString, QAction*> actions_;
    QTabWidget* tabs_ = nullptr;
    QTreeWidget* list_ = nullptr;
    ChatPane* pane_ = nullptr;
    QLineEdit* toField_ = nullptr;
    QLineEdit* subject_ = nullptr;
    QPlainTextEdit* message_ = nullptr;
    QPushButton* sendButton_ = nullptr;
};

}  // namespace tavren
