#include "pm/ui/ChatPM.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QStackedWidget>
#include <QTabBar>
#include <QVBoxLayout>

#include "config/Settings.h"
#include "core/ClientSession.h"
#include "media/ui/ChatCaptureRectangle.h"
#include "pm/DirectLinks.h"
#include "pm/PrivateChats.h"
#include "pm/ReceivedFileName.h"
#include "pm/ui/PmInputBox.h"
#include "pm/ui/PmTab.h"
#include "render/ui/ChatPane.h"
#include "render/ui/PaneReset.h"
#include "render/ui/SmileyPicker.h"
#include "rooms/ui/RoomIcons.h"

namespace tavren {

ChatPM::ChatPM(ClientSession& session, QWidget* parent)
    : QMainWindow(parent), session_(session), chats_(session.privateChats()) {
    setObjectName(QStringLiteral("ChatPM"));

    auto* central = new QWidget(this);
    auto* layout = new QVBoxLayout(central);
    layout->setContentsMargins(0, 2, 0, 0);
    layout->setSpacing(0);
    tabs_ = new QTabBar(central);
    tabs_->setObjectName(QStringLiteral("TabStrip1"));
    tabs_->setExpanding(false);
    tabs_->setDocumentMode(true);
    tabs_->setUsesScrollButtons(true);
    tabs_->setContextMenuPolicy(Qt::CustomContextMenu);
    stack_ = new QStackedWidget(central);
    buildMenus();
    layout->addWidget(tabs_);
    layout->addWidget(buildButtons());
    layout->addWidget(stack_, 1);
    setCentralWidget(central);

    connect(tabs_, &QTabBar::currentChanged, this, &ChatPM::onTabClicked);
    connect(tabs_, &QTabBar::customContextMenuRequested, this, &ChatPM::showTabMenu);
    connect(&chats_, &PrivateChats::conversationOpened, this, &ChatPM::onOpened);
    connect(&chats_, &PrivateChats::conversationClosed, this, &ChatPM::onClosed);
    connect(&chats_, &PrivateChats::selectionChanged, this, &ChatPM::onSelectionChanged);
    connect(&chats_, &PrivateChats::unreadChanged, this, &ChatPM::onUnreadChanged);
    connect(&chats_, &PrivateChats::captionChanged, this, [this](int position) {
        tabs_->setTabText(position, chats_.conversation(position).user);
        if (position == chats_.selected()) {
            onSelectionChanged(position);
        }
    });
    connect(&chats_, &PrivateChats::ownTypingChanged, this, [this](int position) {
        if (PmTab* page = tab(position)) {
            page->setOwnTyping(chats_.conversation(position).ownTyping);
        }
    });
    connect(&chats_, &PrivateChats::peerTypingChanged, this, [this](int position) {
        if (PmTab* page = tab(position)) {
            page->setPeerTyping(chats_.conversation(position).peerTyping);
        }
    });
    connect(&chats_, &PrivateChats::lineAdded, this, [this](int index, const QString& html) {
        if (PmTab* page = tabsByIndex_.value(index)) {
            page->pane().AddChat(html);
        }
    });
    connect(&chats_, &PrivateChats::paneCleared, this, [this](int index) {
        if (PmTab* page = tabsByIndex_.value(index)) {
            ResetChatPane(page->pane(), session_.settings().values().color(ColorScheme::ChatPane));
        }
    });
    connect(&session_.settings(), &Settings::changed, this, [this] {
        for (PmTab* each : std::as_const(tabsByIndex_)) {
            each->pane().setScrollThreshold(session_.settings().scrollThreshold());
        }
    });
    DirectLinks& links = session_.directLinks();
    connect(&links, &DirectLinks::linkChanged, this, &ChatPM::showDirectLink);
    connect(&links, &DirectLinks::progressChanged, this, [this](int index) {
        if (PmTab* page = tabsByIndex_.value(index)) {
            page->showProgress(session_.directLinks().linkForIndex(index));
        }
    });
    // A message to a conversation whose window was closed brings the window back.
    connect(&chats_, &PrivateChats::messageArrived, this, [this] {
        if (isHidden()) {
            show();
        }
    });
    // Conversations that were opened before the window existed.
    for (int i = 0; i < chats_.count(); ++i) {
        onOpened(i, false);
    }
    onSelectionChanged(chats_.selected());
    // Never narrower than the row of member buttons, whatever the font.
    setMinimumSize(minimumSizeHint().expandedTo(QSize(440, 340)));
    resize(QSize(580, 460).expandedTo(minimumSize()));
}

ChatPM::~ChatPM() = default;

QAction* ChatPM::addCommand(QMenu* menu, const QString& name, const QString& caption) {
    QAction* action = menu->addAction(caption);
    action->setObjectName(name);
    actions_.insert(name, action);
    return action;
}

void ChatPM::buildMenus() {
    QMenu* conversation = menuBar()->addMenu(tr("&Conversation"));
    connect(addCommand(conversation, QStringLiteral("addbuddy"), tr("&Add User to Buddy List..")),
            &QAction::triggered, this, [this] { chats_.addBuddy(chats_.selected()); });
    connect(addCommand(conversation, QStringLiteral("ignoreuser"), tr("&Ignore User")),
            &QAction::triggered, this, [this] { chats_.ignoreUser(chats_.selected()); });
    // The profile comes back from the server and opens its own window.
    connect(addCommand(conversation, QStringLiteral("viewprofile"), tr("View &Profile")),
            &QAction::triggered, this, [this] {
                if (chats_.selected() >= 0) {
                    session_.profiles().view(chats_.conversation(chats_.selected()).user);
                }
            });
    connect(addCommand(conversation, QStringLiteral("locateuser"), tr("&Locate User")),
            &QAction::triggered, this, [this] { chats_.locate(chats_.selected()); });
    connect(addCommand(conversation, QStringLiteral("inviteuser"), tr("In&vite to Channel..")),
            &QAction::triggered, this, &ChatPM::inviteSelected);
    conversation->addSeparator();
    connect(addCommand(conversation, QStringLiteral("mnuprintconvo"), tr("&Print Conversation..")),
            &QAction::triggered, this, &ChatPM::printSelected);
    conversation->addSeparator();
    connect(addCommand(conversation, QStringLiteral("closewin"), tr("&Close Conversation")),
            &QAction::triggered, this, [this] { chats_.closeConversation(chats_.selected()); });
    connect(addCommand(conversation, QStringLiteral("exitwin"), tr("Close &Window")),
            &QAction::triggered, this, &QWidget::close);

    // The direct connection of the selected conversation and the files that go over it.
    QMenu* transfer = menuBar()->addMenu(tr("&Transfer"));
    connect(addCommand(transfer, QStringLiteral("mnudirect"), tr("&Direct Connection")),
            &QAction::triggered, this,
            [this] { session_.directLinks().activateLink(chats_.selected()); });
    transfer->addSeparator();
    connect(addCommand(transfer, QStringLiteral("mnusendfile"), tr("Send &File..")),
            &QAction::triggered, this, [this] { chooseFile(false); });
    connect(addCommand(transfer, QStringLiteral("mnusendpicture"), tr("Send &Picture..")),
            &QAction::triggered, this, [this] { chooseFile(true); });
    connect(addCommand(transfer, QStringLiteral("mnucapture"), tr("Send Screen &Capture..")),
            &QAction::triggered, this, &ChatPM::captureScreen);

    QMenu* edit = menuBar()->addMenu(tr("&Edit"));
    QAction* copy = addCommand(edit, QStringLiteral("mnu_copyit"), tr("&Copy"));
    copy->setShortcut(QKeySequence::Copy);
    copy->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(copy, &QAction::triggered, this, &ChatPM::copySelected);
    connect(addCommand(edit, QStringLiteral("clearwin"), tr("C&lear Window")), &QAction::triggered,
            this, [this] { chats_.clearPane(chats_.selected()); });
    connect(addCommand(edit, QStringLiteral("smileys"), tr("&Smileys..")), &QAction::triggered,
            this, [this] {
                if (PmTab* current = selectedTab()) {
                    openSmileys(&current->input());
                }
            });
}

QPushButton* ChatPM::addButton(const QString& name, const QString& caption, const QString& tip,
                               const char* actionName) {
    auto* button = new QPushButton(caption);
    button->setObjectName(name);
    button->setToolTip(tip);
    button->setAutoDefault(false);
    button->setFocusPolicy(Qt::TabFocus);
    if (QAction* action = actions_.value(QString::fromLatin1(actionName))) {
        connect(button, &QPushButton::clicked, action, &QAction::trigger);
    }
    buttons_.insert(name, button);
    return button;
}

QWidget* ChatPM::buildButtons() {
    auto* bar = new QWidget(this);
    bar->setObjectName(QStringLiteral("memberButtons"));
    auto* row = new QHBoxLayout(bar);
    row->setContentsMargins(4, 4, 4, 0);
    row->setSpacing(4);
    row->addWidget(addButton(QStringLiteral("addbuddyButton"), tr("Add Buddy"),
                             tr("Add this member to your buddy list"), "addbuddy"));
    row->addWidget(addButton(QStringLiteral("XPButton3"), tr("Ignore"),
                             tr("Ignore this member: their messages are no longer shown"),
                             "ignoreuser"));
    row->addWidget(addButton(QStringLiteral("XPButton5"), tr("Profile"),
                             tr("Show this member's profile"), "viewprofile"));
    row->addWidget(addButton(QStringLiteral("locateButton"), tr("Locate"),
                             tr("Ask the server where this member is"), "locateuser"));
    row->addWidget(addButton(QStringLiteral("inviteButton"), tr("Invite"),
                             tr("Invite this member to one of your channels"), "inviteuser"));
    row->addStretch(1);
    row->addWidget(addButton(QStringLiteral("clearButton"), tr("Clear"),
                             tr("Empty this conversation's window"), "clearwin"));
    row->addWidget(addButton(QStringLiteral("closeButton"), tr("Close"),
                             tr("Close this conversation"), "closewin"));
    return bar;
}

PmTab* ChatPM::tab(int position) const {
    if (position < 0 || position >= chats_.count()) {
        return nullptr;
    }
    return tabsByIndex_.value(chats_.conversation(position).index);
}

PmTab* ChatPM::selectedTab() const {
    return tab(chats_.selected());
}

void ChatPM::onOpened(int position, bool byMember) {
    const Conversation& opened = chats_.conversation(position);
    auto* page = new PmTab(session_.dataRoot(), stack_);
    ResetChatPane(page->pane(), session_.settings().values().color(ColorScheme::ChatPane));
    page->pane().setScrollThreshold(session_.settings().scrollThreshold());
    page->setOwnTyping(opened.ownTyping);
    page->setPeerTyping(opened.peerTyping);
    tabsByIndex_.insert(opened.index, page);
    stack_->addWidget(page);
    connect(page, &PmTab::sendRequested, this, [this, page] {
        if (page == selectedTab()) {
            sendInput();
        }
    });
    connect(page, &PmTab::smileyRequested, this, &ChatPM::openSmileys);
    connect(page, &PmTab::paneMenuRequested, this,
            [this, page](const QPoint& at) { showPaneMenu(page, at); });
    const int index = opened.index;
    connect(page, &PmTab::directLinkClicked, this,
            [this, index] { session_.directLinks().activateLink(chats_.positionOfIndex(index)); });
    connect(page, &PmTab::transferButtonClicked, this, &ChatPM::pressTransferButton);
    connect(page, &PmTab::pictureRequested, this, [this] { chooseFile(true); });
    connect(page, &PmTab::captureRequested, this, &ChatPM::captureScreen);
    connect(&page->input(), &PmInputBox::filesDropped, this,
            [this, index](const QList<QUrl>& urls) {
                session_.directLinks().sendDropped(chats_.positionOfIndex(index), urls);
            });
    // Received pictures show in the pane, and their links open the files; nothing else local.
    page->pane().setPictureLookup([this](const QString& address) {
        return session_.directLinks().shownFiles().picture(address);
    });
    page->pane().setLocalLinkOpener(
        [this](const QUrl& link) { session_.directLinks().openLink(link); });
    page->showLink(session_.directLinks().linkForIndex(opened.index));
    page->showProgress(session_.directLinks().linkForIndex(opened.index));
    connect(&page->input(), &PmInputBox::edited, this,
            [this, index](PrivateChats::Edit edit, bool hasText) {
                chats_.noteEdit(chats_.positionOfIndex(index), edit, hasText);
            });
    {
        const QSignalBlocker block(tabs_);
        tabs_->insertTab(position, opened.user);
    }
    if (isHidden()) {
        show();
    }
    if (byMember) {
        raise();
        activateWindow();
    }
    updateCommands();
}

void ChatPM::onClosed(int position, int index) {
    {
        const QSignalBlocker block(tabs_);
        tabs_->removeTab(position);
    }
    if (PmTab* gone = tabsByIndex_.take(index)) {
        stack_->removeWidget(gone);
        gone->deleteLater();
    }
    const int now = chats_.selected();
    if (PmTab* current = tab(now)) {
        syncingTabs_ = true;
        tabs_->setCurrentIndex(now);
        syncingTabs_ = false;
        stack_->setCurrentWidget(current);
        current->input().setFocus();
    }
    setWindowTitle(QStringLiteral("Private Messages: (") + QString::number(chats_.count()) +
                   QLatin1Char(')'));
    updateCommands();
}

void ChatPM::onSelectionChanged(int position) {
    PmTab* current = tab(position);
    if (current == nullptr) {
        setWindowTitle(QStringLiteral("Private Messages: (") + QString::number(chats_.count()) +
                       QLatin1Char(')'));
        updateCommands();
        return;
    }
    if (tabs_->currentIndex() != position) {
        syncingTabs_ = true;
        tabs_->setCurrentIndex(position);
        syncingTabs_ = false;
    }
    stack_->setCurrentWidget(current);
    setWindowTitle(QStringLiteral("Private Message: ") + chats_.conversation(position).user);
    current->input().setFocus();
    updateCommands();
}

void ChatPM::onUnreadChanged(int position) {
    if (position >= 0 && position < tabs_->count()) {
        tabs_->setTabIcon(position,
                          chats_.conversation(position).unread ? RoomIcons::unread() : QIcon());
    }
}

void ChatPM::onTabClicked(int position) {
    if (!syncingTabs_) {
        chats_.select(position);
    }
}

void ChatPM::updateCommands() {
    const bool any = chats_.selected() >= 0;
    for (const char* name : {"addbuddy", "ignoreuser", "viewprofile", "locateuser", "inviteuser",
                             "mnuprintconvo", "closewin", "mnu_copyit", "clearwin", "smileys",
                             "mnudirect", "mnusendfile", "mnusendpicture", "mnucapture"}) {
        actions_.value(QString::fromLatin1(name))->setEnabled(any);
    }
    for (QPushButton* each : std::as_const(buttons_)) {
        each->setEnabled(any);
    }
    if (any) {
        const DirectLink* link =
            session_.directLinks().linkForIndex(chats_.conversation(chats_.selected()).index);
        QAction* direct = actions_.value(QStringLiteral("mnudirect"));
        // The menu says what the conversation's link says, without its dash.
        const QString linkText = link != nullptr
                                     ? link->linkText()
                                     : QStringLiteral("- Connect to Send Files/Pictures..");
        direct->setText(linkText.mid(2));
        direct->setEnabled(link == nullptr || link->state() != DirectLink::State::Accepting);
        const bool sending = link != nullptr && link->sending();
        for (const char* name : {"mnusendfile", "mnusendpicture", "mnucapture"}) {
            actions_.value(QString::fromLatin1(name))->setEnabled(!sending);
        }
        const bool buddy = chats_.isBuddy(chats_.selected());
        actions_.value(QStringLiteral("addbuddy"))->setEnabled(!buddy);
        buttons_.value(QStringLiteral("addbuddyButton"))->setEnabled(!buddy);
    }
}

void ChatPM::sendInput() {
    PmTab* current = selectedTab();
    if (current == nullptr) {
        return;
    }
    if (chats_.submit(chats_.selected(), current->input().text())) {
        current->input().clear();
    }
}

void ChatPM::fillTabMenu(QMenu& menu, int position) {
    const QString user = chats_.conversation(position).user;
    QAction* close = menu.addAction(QStringLiteral("[X] Close: ") + user);
    close->setObjectName(QStringLiteral("mnuclosecon"));
    connect(close, &QAction::triggered, this,
            [this, user] { chats_.closeConversation(chats_.positionOf(user)); });
    if (chats_.isBuddy(position)) {
        QAction* already = menu.addAction(QStringLiteral("Already in Buddy List..."));
        already->setObjectName(QStringLiteral("mnuaddbuddy"));
        already->setEnabled(false);
        return;
    }
    QAction* add = menu.addAction(QStringLiteral("Add User to Buddy List..."));
    add->setObjectName(QStringLiteral("mnuaddbuddy"));
    connect(add, &QAction::triggered, this,
            [this, user] { chats_.addBuddy(chats_.positionOf(user)); });
}

void ChatPM::showTabMenu(const QPoint& at) {
    const int position = tabs_->tabAt(at);
    if (position < 0) {
        return;
    }
    chats_.select(position);
    QMenu menu(this);
    fillTabMenu(menu, position);
    menu.exec(tabs_->mapToGlobal(at));
}

void ChatPM::showPaneMenu(PmTab* page, const QPoint& panePos) {
    ChatPane& pane = page->pane();
    QMenu menu(this);
    fillPaneMenu(menu, QUrl(pane.anchorAt(panePos)));
    menu.exec(pane.viewport()->mapToGlobal(panePos));
}

void ChatPM::fillPaneMenu(QMenu& menu, const QUrl& link) {
    // A file that came or went over a direct connection: open it, or keep a copy elsewhere.
    const QString shown = session_.directLinks().shownFiles().fileFor(link);
    if (!shown.isEmpty()) {
        const bool picture = ReceivedFileName::isPicture(QFileInfo(shown).fileName());
        QAction* open = menu.addAction(picture ? tr("&View Image") : tr("&Open File"));
        open->setObjectName(picture ? QStringLiteral("mnuViewImage")
                                    : QStringLiteral("mnuOpenFile"));
        connect(open, &QAction::triggered, this,
                [this, link] { session_.directLinks().openLink(link); });
        QAction* save = menu.addAction(picture ? tr("&Save Image As..") : tr("&Save File As.."));
        save->setObjectName(picture ? QStringLiteral("mnuSaveImageAs")
                                    : QStringLiteral("mnuSaveFileAs"));
        connect(save, &QAction::triggered, this, [this, shown] { saveShownFileAs(shown); });
        menu.addSeparator();
    }
    menu.addAction(actions_.value(QStringLiteral("mnu_copyit")));
    QAction* copyLink = menu.addAction(tr("Copy &Link"));
    copyLink->setObjectName(QStringLiteral("mnuCopyLink"));
    copyLink->setEnabled(!link.isEmpty());
    connect(copyLink, &QAction::triggered, this,
            [link] { QApplication::clipboard()->setText(link.toString()); });
    QAction* openLink = menu.addAction(tr("&Open Link"));
    openLink->setObjectName(QStringLiteral("mnuShowLink"));
    openLink->setEnabled(ChatPane::isOpenableLink(link));
    connect(openLink, &QAction::triggered, this, [link] { QDesktopServices::openUrl(link); });
    menu.addSeparator();
    menu.addAction(actions_.value(QStringLiteral("clearwin")));
    menu.addAction(actions_.value(QStringLiteral("mnuprintconvo")));
}

void ChatPM::showDirectLink(int index) {
    if (PmTab* page = tabsByIndex_.value(index)) {
        page->showLink(session_.directLinks().linkForIndex(index));
    }
    const int position = chats_.selected();
    if (position >= 0 && chats_.conversation(position).index == index) {
        updateCommands();
    }
}

void ChatPM::pressTransferButton() {
    if (!session_.directLinks().pressButton(chats_.selected())) {
        chooseFile(false);
    }
}

QFileDialog* ChatPM::fileDialog() const {
    return fileDialog_;
}

ChatCaptureRectangle* ChatPM::captureWindow() const {
    return captureWindow_;
}

QStringList ChatPM::fileFilters(bool pictures) {
    // Shown without their pattern part (HideNameFilterDetails): the patterns carry both letter
    // cases, since file names are case-sensitive here.
    QStringList filters{QStringLiteral("All Files(*.*) (*)")};
    if (pictures) {
        filters << QStringLiteral(
                       "All Image Files (*.bmp,*.jpg,*.gif,*.png) (*.bmp *.jpg *.gif "
                       "*.png *.BMP *.JPG *.GIF *.PNG)")
                << QStringLiteral("BMP Files (*.bmp) (*.bmp *.BMP)")
                << QStringLiteral("JPEG Files (*.jpg) (*.jpg *.JPG)")
                << QStringLiteral("GIF Files (*.gif) (*.gif *.GIF)")
                << QStringLiteral("PNG Files (*.png) (*.png *.PNG)");
    }
    return filters;
}

QFileDialog* ChatPM::chooseFile(bool pictures) {
    const int position = chats_.selected();
    if (position < 0) {
        return nullptr;
    }
    if (fileDialog_ != nullptr) {
        fileDialog_->close();
    }
    const int index = chats_.conversation(position).index;
    auto* dialog = new QFileDialog(
        this, pictures ? tr("Send Picture to %1").arg(chats_.conversation(position).user)
                       : tr("Send File to %1").arg(chats_.conversation(position).user));
    dialog->setObjectName(QStringLiteral("sendFileDialog"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFile);
    dialog->setOption(QFileDialog::HideNameFilterDetails);
    dialog->setNameFilters(fileFilters(pictures));
    if (pictures) {
        dialog->selectNameFilter(fileFilters(true).at(1));
    }
    connect(dialog, &QFileDialog::fileSelected, this, [this, index](const QString& path) {
        session_.directLinks().sendFile(chats_.positionOfIndex(index), path);
    });
    fileDialog_ = dialog;
    dialog->open();
    return dialog;
}

ChatCaptureRectangle* ChatPM::captureScreen() {
    const int position = chats_.selected();
    if (position < 0) {
        return nullptr;
    }
    if (captureWindow_ != nullptr) {
        captureWindow_->close();
    }
    const int index = chats_.conversation(position).index;
    QScreen* where = screen();
    const QImage frozen = ChatCaptureRectangle::grabScreen(where);
    if (frozen.isNull()) {
        // Nothing to capture from: the steps end in their error at once.
        session_.directLinks().sendScreenCapture(position, frozen, QRect());
        return nullptr;
    }
    auto* window = new ChatCaptureRectangle(frozen, where);
    connect(
        window, &ChatCaptureRectangle::selected, this, [this, index, frozen](const QRect& area) {
            session_.directLinks().sendScreenCapture(chats_.positionOfIndex(index), frozen, area);
        });
    captureWindow_ = window;
    window->open();
    return window;
}

void ChatPM::saveShownFileAs(const QString& path) {
    auto* dialog = new QFileDialog(this, tr("Save As"), path);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    // The overwrite question is the conversation's own.
    dialog->setOption(QFileDialog::DontConfirmOverwrite);
    connect(dialog, &QFileDialog::fileSelected, this,
            [this, path](const QString& target) { session_.directLinks().saveCopy(path, target); });
    dialog->open();
}

void ChatPM::inviteSelected() {
    const int position = chats_.selected();
    const QStringList channels = chats_.channels();
    QPushButton* anchor = buttons_.value(QStringLiteral("inviteButton"));
    if (channels.size() < 2 || anchor == nullptr) {
        chats_.inviteToChannel(position, channels.value(0));
        return;
    }
    // More than one channel: the member picks which.
    QMenu menu(this);
    for (const QString& channel : channels) {
        connect(menu.addAction(channel), &QAction::triggered, this,
                [this, position, channel] { chats_.inviteToChannel(position, channel); });
    }
    menu.exec(anchor->mapToGlobal(QPoint(0, anchor->height())));
}

void ChatPM::copySelected() {
    PmTab* current = selectedTab();
    if (current == nullptr) {
        return;
    }
    ChatPane& pane = current->pane();
    const QString selection = pane.textCursor().selectedText();
    QApplication::clipboard()->setText(selection.isEmpty() ? pane.toPlainText() : selection);
}

void ChatPM::printSelected() {
    PmTab* current = selectedTab();
    if (current == nullptr) {
        return;
    }
    current->pane().flush();
    QPrinter printer;
    printer.setDocName(QStringLiteral("Private Message: ") +
                       chats_.conversation(chats_.selected()).user);
    QPrintDialog dialog(&printer, this);
    dialog.setWindowTitle(tr("Print Conversation"));
    if (dialog.exec() == QDialog::Accepted) {
        current->pane().print(&printer);
    }
}

void ChatPM::openSmileys(QWidget* anchor) {
    if (smileys_ == nullptr) {
        smileys_ = new SmileyPicker(session_.dataRoot(), this);
        connect(smileys_, &SmileyPicker::smileyChosen, this, [this](const QString& code) {
            if (PmTab* current = selectedTab()) {
                current->input().insertCode(code);
            }
        });
    }
    smileys_->popupBelow(anchor);
}

void ChatPM::closeEvent(QCloseEvent* event) {
    // Closing the window ends every conversation; the next one opens it again.
    chats_.closeAll();
    event->accept();
}

}  // namespace tavren
