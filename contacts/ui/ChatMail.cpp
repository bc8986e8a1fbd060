#include "contacts/ui/ChatMail.h"

#include <QAction>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSet>
#include <QSignalBlocker>
#include <QSplitter>
#include <QTabWidget>
#include <QToolBar>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "config/ColumnWidths.h"
#include "contacts/MailPage.h"
#include "contacts/MailText.h"
#include "contacts/Mailbox.h"
#include "contacts/ui/MailIcons.h"
#include "core/ClientSession.h"
#include "core/Prompter.h"
#include "render/ui/ChatPane.h"

namespace tavren {

namespace {

const QString kErrorTitle = QStringLiteral("Error: Error Composing Message..");
// List columns: the sender is the row's text, the subject, the sent time and the body its
// sub-items. The body is not shown as a column; the reading pane shows it.
enum Column { SenderColumn, SubjectColumn, SentColumn, BodyColumn, ColumnCount };
constexpr int kDefaultWidths[] = {120, 220, 150};
// Each row remembers the id of its mail, so that the selection survives a new inbox.
constexpr int kIdRole = Qt::UserRole + 1;

}  // namespace

ChatMail::ChatMail(ClientSession& session, Prompter& prompter, QWidget* parent)
    : QMainWindow(parent), session_(session), mailbox_(session.mailbox()), prompter_(prompter) {
    setObjectName(QStringLiteral("ChatMail"));
    setWindowTitle(tr("Tavren Mail"));
    setWindowIcon(MailIcons::mailFull());
    tabs_ = new QTabWidget(this);
    tabs_->setObjectName(QStringLiteral("mailTabs"));
    tabs_->addTab(buildInbox(), mailbox_.inboxCaption());
    tabs_->addTab(buildCompose(), tr("Compose"));
    setCentralWidget(tabs_);
    buildMenus();

    connect(&mailbox_, &Mailbox::inboxChanged, this, &ChatMail::rebuildList);
    connect(&mailbox_, &Mailbox::sent, this, [this] {
        prompter_.message(tr("Your Message(s) have been sent!"), tr("Message Sent"),
                          Prompter::Icon::Information);
        toField_->clear();
        subject_->clear();
        message_->clear();
        showInbox();
    });
    connect(&mailbox_, &Mailbox::refused, this, [this](const QString& reason) {
        prompter_.message(reason.isEmpty() ? tr("Your message was not sent.") : reason, kErrorTitle,
                          Prompter::Icon::Warning);
    });
    connect(&session_.server(), &ServerSession::onlineChanged, this, &ChatMail::updateCommands);
    rebuildList();
    resize(640, 520);
}

QAction* ChatMail::addCommand(QMenu* menu, const QString& name, const QString& caption) {
    QAction* action = menu->addAction(caption);
    action->setObjectName(name);
    actions_.insert(name, action);
    return action;
}

void ChatMail::buildMenus() {
    QMenu* messageMenu = menuBar()->addMenu(tr("&Message"));
    connect(addCommand(messageMenu, QStringLiteral("mnucompose"), tr("&New Message..")),
            &QAction::triggered, this, [this] { composeTo(QString()); });
    connect(addCommand(messageMenu, QStringLiteral("mnureply"), tr("&Reply..")),
            &QAction::triggered, this, &ChatMail::reply);
    connect(addCommand(messageMenu, QStringLiteral("mnuforward"), tr("&Forward..")),
            &QAction::triggered, this, &ChatMail::forward);
    QAction* remove = addCommand(messageMenu, QStringLiteral("mnudelete"), tr("&Delete"));
    connect(remove, &QAction::triggered, this, &ChatMail::deleteSelected);
    messageMenu->addSeparator();
    connect(addCommand(messageMenu, QStringLiteral("mnurefresh"), tr("&Check for Mail")),
            &QAction::triggered, &mailbox_, &Mailbox::refresh);
    messageMenu->addSeparator();
    connect(addCommand(messageMenu, QStringLiteral("closewin"), tr("&Close")), &QAction::triggered,
            this, &QWidget::close);

    QToolBar* tools = addToolBar(tr("Mail"));
    tools->setObjectName(QStringLiteral("mailTools"));
    tools->setMovable(false);
    tools->setToolButtonStyle(Qt::ToolButtonTextOnly);
    for (const char* name : {"mnucompose", "mnureply", "mnuforward", "mnudelete", "mnurefresh"}) {
        tools->addAction(actions_.value(QString::fromLatin1(name)));
    }
    actions_.value(QStringLiteral("mnucompose"))->setToolTip(tr("Write a new message"));
    actions_.value(QStringLiteral("mnureply"))
        ->setToolTip(tr("Answer the message you are reading"));
    actions_.value(QStringLiteral("mnuforward"))
        ->setToolTip(tr("Send the message you are reading on to someone else"));
    actions_.value(QStringLiteral("mnudelete"))->setToolTip(tr("Delete the chosen messages"));
    actions_.value(QStringLiteral("mnurefresh"))->setToolTip(tr("Ask the server for new mail"));
    updateCommands();
}

QWidget* ChatMail::buildInbox() {
    auto* splitter = new QSplitter(Qt::Vertical);
    splitter->setObjectName(QStringLiteral("inbox"));
    list_ = new QTreeWidget(splitter);
    list_->setObjectName(QStringLiteral("List1"));
    list_->setColumnCount(ColumnCount);
    list_->setHeaderLabels({tr("From"), tr("Subject"), tr("Sent"), tr("Message")});
    list_->setRootIsDecorated(false);
    list_->setUniformRowHeights(true);
    list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list_->setColumnHidden(BodyColumn, true);
    list_->header()->setSectionsMovable(false);
    list_->header()->setStretchLastSection(true);
    for (int column = 0; column < BodyColumn; ++column) {
        list_->setColumnWidth(column, ColumnWidths::read(session_.store(), ColumnWidths::Mail,
                                                         column, kDefaultWidths[column]));
    }
    connect(list_->header(), &QHeaderView::sectionResized, this,
            [this](int column, int, int width) {
                if (column < BodyColumn && width > 0) {
                    ColumnWidths::write(session_.store(), ColumnWidths::Mail, column, width);
                }
            });
    connect(list_, &QTreeWidget::currentItemChanged, this, &ChatMail::showCurrent);
    connect(list_, &QTreeWidget::itemSelectionChanged, this, &ChatMail::updateCommands);
    list_->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(list_, &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
        if (list_->itemAt(at) == nullptr) {
            return;
        }
        QMenu menu(this);
        for (const char* name : {"mnureply", "mnuforward", "mnudelete"}) {
            menu.addAction(actions_.value(QString::fromLatin1(name)));
        }
        menu.exec(list_->viewport()->mapToGlobal(at));
    });
    auto* deleteKey = new QAction(list_);
    deleteKey->setShortcut(QKeySequence::Delete);
    deleteKey->setShortcutContext(Qt::WidgetShortcut);
    connect(deleteKey, &QAction::triggered, this, &ChatMail::deleteSelected);
    list_->addAction(deleteKey);

    pane_ = new ChatPane(splitter);
    pane_->setObjectName(QStringLiteral("WebBrowser1"));
    pane_->setDataRoot(session_.dataRoot());
    showEmptyPane();
    splitter->setStretchFactor(0, 2);
    splitter->setStretchFactor(1, 3);
    return splitter;
}

QWidget* ChatMail::buildCompose() {
    auto* page = new QWidget;
    page->setObjectName(QStringLiteral("compose"));
    auto* layout = new QVBoxLayout(page);
    auto* form = new QFormLayout;
    toField_ = new QLineEdit(page);
    toField_->setObjectName(QStringLiteral("ToField"));
    toField_->setPlaceholderText(tr("member names, separated by commas"));
    subject_ = new QLineEdit(page);
    subject_->setObjectName(QStringLiteral("Subject"));
    form->addRow(tr("&To:"), toField_);
    form->addRow(tr("S&ubject:"), subject_);
    layout->addLayout(form);
    message_ = new QPlainTextEdit(page);
    message_->setObjectName(QStringLiteral("Message"));
    message_->setPlaceholderText(tr("Your message. It waits on the server until they read it."));
    layout->addWidget(message_, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    sendButton_ = new QPushButton(tr("&Send"), page);
    sendButton_->setObjectName(QStringLiteral("Command1"));
    sendButton_->setAutoDefault(false);
    connect(sendButton_, &QPushButton::clicked, this, &ChatMail::send);
    buttons->addWidget(sendButton_);
    layout->addLayout(buttons);
    return page;
}

void ChatMail::showInbox() {
    tabs_->setCurrentIndex(0);
    list_->setFocus();
}

void ChatMail::composeTo(const QString& names) {
    toField_->setText(names);
    subject_->clear();
    message_->clear();
    tabs_->setCurrentIndex(1);
    if (names.isEmpty()) {
        toField_->setFocus();
    } else {
        subject_->setFocus();
    }
}

int ChatMail::currentRow() const {
    QTreeWidgetItem* current = list_->currentItem();
    return current == nullptr ? -1 : list_->indexOfTopLevelItem(current);
}

void ChatMail::reply() {
    const int row = currentRow();
    if (row < 0) {
        return;
    }
    const MailRow& mail = mailbox_.rows().at(row);
    composeTo(mail.sender);
    subject_->setText(MailText::replySubject(mail.subject));
    message_->setPlainText(
        MailText::quoted(mail.sender + tr(" wrote on ") + mail.sentTime, mail.body));
    message_->moveCursor(QTextCursor::Start);
    message_->setFocus();
}

void ChatMail::forward() {
    const int row = currentRow();
    if (row < 0) {
        return;
    }
    const MailRow& mail = mailbox_.rows().at(row);
    composeTo(QString());
    subject_->setText(MailText::forwardSubject(mail.subject));
    message_->setPlainText(MailText::quoted(
        tr("Forwarded message from ") + mail.sender + tr(", sent ") + mail.sentTime, mail.body));
    message_->moveCursor(QTextCursor::Start);
}

void ChatMail::deleteSelected() {
    QList<int> chosen;
    for (int i = 0; i < list_->topLevelItemCount(); ++i) {
        if (list_->topLevelItem(i)->isSelected()) {
            chosen << i;
        }
    }
    if (!chosen.isEmpty() && session_.server().online()) {
        mailbox_.remove(chosen);
    }
}

void ChatMail::send() {
    switch (mailbox_.send(toField_->text(), subject_->text(), message_->toPlainText())) {
        case Mailbox::SendResult::Sent:
            // The form is emptied when the server says the mail is kept; a refusal leaves it.
            return;
        case Mailbox::SendResult::NoAddressee:
            prompter_.message(tr("Who is it for? Type one or more member names in the To "
                                 "field, separated by commas."),
                              kErrorTitle, Prompter::Icon::Warning);
            toField_->setFocus();
            return;
        case Mailbox::SendResult::Empty:
            prompter_.message(tr("Write a subject or a message first."), kErrorTitle,
                              Prompter::Icon::Warning);
            message_->setFocus();
            return;
        case Mailbox::SendResult::Offline:
            prompter_.message(tr("You are not connected: your message was not sent."), kErrorTitle,
                              Prompter::Icon::Warning);
            return;
    }
}

void ChatMail::rebuildList() {
    const QTreeWidgetItem* current = list_->currentItem();
    const QString currentId = current ? current->data(SenderColumn, kIdRole).toString() : QString();
    QSet<QString> selectedIds;
    for (const QTreeWidgetItem* item : list_->selectedItems()) {
        selectedIds.insert(item->data(SenderColumn, kIdRole).toString());
    }
    {
        const QSignalBlocker block(list_);
        list_->clear();
        QTreeWidgetItem* keep = nullptr;
        for (const MailRow& row : mailbox_.rows()) {
            auto* item = new QTreeWidgetItem(list_);
            item->setText(SenderColumn, row.sender);
            item->setText(SubjectColumn, row.subject);
            item->setText(SentColumn, row.sentTime);
            item->setText(BodyColumn, row.body);
            item->setData(SenderColumn, kIdRole, row.id);
            item->setSelected(selectedIds.contains(row.id));
            if (!currentId.isEmpty() && row.id == currentId) {
                keep = item;
            }
        }
        if (keep != nullptr) {
            list_->setCurrentItem(keep, 0, QItemSelectionModel::NoUpdate);
        }
    }
    tabs_->setTabText(0, mailbox_.inboxCaption());
    showCurrent();
    updateCommands();
}

void ChatMail::showCurrent() {
    const int row = currentRow();
    if (row < 0 || row >= mailbox_.count()) {
        showEmptyPane();
        updateCommands();
        return;
    }
    // The mail being read is the one the commands work on, even when the list took it as
    // current on its own (on getting the focus) without selecting it.
    if (list_->selectedItems().isEmpty()) {
        const QSignalBlocker block(list_);
        list_->currentItem()->setSelected(true);
    }
    pane_->navigate(MailPage::empty(session_.settings().values().color(ColorScheme::ChatPane)));
    pane_->AddChat(MailPage::reading(mailbox_.rows().at(row)));
    updateCommands();
}

void ChatMail::showEmptyPane() {
    pane_->navigate(MailPage::empty(session_.settings().values().color(ColorScheme::ChatPane)));
}

void ChatMail::updateCommands() {
    if (actions_.isEmpty()) {
        return;
    }
    const bool online = session_.server().online();
    const bool reading = currentRow() >= 0;
    actions_.value(QStringLiteral("mnureply"))->setEnabled(online && reading);
    actions_.value(QStringLiteral("mnuforward"))->setEnabled(online && reading);
    actions_.value(QStringLiteral("mnudelete"))
        ->setEnabled(online && !list_->selectedItems().isEmpty());
    actions_.value(QStringLiteral("mnurefresh"))->setEnabled(online);
    actions_.value(QStringLiteral("mnucompose"))->setEnabled(online);
    sendButton_->setEnabled(online);
}

}  // namespace tavren
