#include "rooms/ui/ChatRoom.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTabBar>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "config/Settings.h"
#include "core/ClientSession.h"
#include "core/Prompter.h"
#include "render/RankMarks.h"
#include "render/ui/ChatPane.h"
#include "render/ui/PaneReset.h"
#include "render/ui/SmileyPicker.h"
#include "rooms/RoomCommandHost.h"
#include "rooms/RoomCommands.h"
#include "rooms/RoomModeration.h"
#include "rooms/RoomSession.h"
#include "rooms/ui/RoomIcons.h"
#include "rooms/ui/RoomInputBox.h"
#include "rooms/ui/RoomTab.h"

namespace tavren {

namespace {
const QString kTitle = QStringLiteral("Tavren Chat Rooms -");
}  // namespace

ChatRoom::ChatRoom(ClientSession& session, RoomCommandHost& host, Prompter& prompter,
                   QWidget* parent)
    : QMainWindow(parent),
      session_(session),
      rooms_(session.rooms()),
      prompter_(prompter),
      host_(host),
      commands_(std::make_unique<RoomCommands>(session.rooms(), session.server().link(), host)),
      moderation_(std::make_unique<RoomModeration>(session.rooms(), prompter)) {
    setObjectName(QStringLiteral("ChatRoom"));
    setAttribute(Qt::WA_DeleteOnClose, false);
    setMinimumSize(420, 300);

    auto* central = new QWidget(this);
    auto* layout = new QVBoxLayout(central);
    layout->setContentsMargins(0, 2, 0, 0);
    layout->setSpacing(0);
    tabs_ = new QTabBar(central);
    tabs_->setObjectName(QStringLiteral("TabStrip1"));
    tabs_->setExpanding(false);
    tabs_->setDocumentMode(true);
    tabs_->setContextMenuPolicy(Qt::CustomContextMenu);
    stack_ = new QStackedWidget(central);
    layout->addWidget(tabs_);
    layout->addWidget(stack_, 1);
    setCentralWidget(central);

    buildMenus();
    buildStatusBar();

    connect(tabs_, &QTabBar::currentChanged, this, &ChatRoom::onTabClicked);
    connect(tabs_, &QTabBar::customContextMenuRequested, this, &ChatRoom::showTabMenu);
    connect(&rooms_, &RoomSession::roomOpened, this, &ChatRoom::onRoomOpened);
    connect(&rooms_, &RoomSession::roomRemoved, this, &ChatRoom::onRoomRemoved);
    connect(&rooms_, &RoomSession::membersChanged, this, &ChatRoom::onMembersChanged);
    connect(&rooms_, &RoomSession::unreadChanged, this, &ChatRoom::onUnreadChanged);
    connect(&rooms_, &RoomSession::selectionChanged, this, &ChatRoom::onSelectionChanged);
    connect(&rooms_, &RoomSession::lineAdded, this, [this](int pane, const QString& html) {
        if (RoomTab* target = tabsByPane_.value(pane)) {
            target->pane().AddChat(html);
        }
    });
    connect(&rooms_, &RoomSession::paneCleared, this, [this](int pane) {
        if (RoomTab* target = tabsByPane_.value(pane)) {
            ResetChatPane(target->pane(),
                          session_.settings().values().color(ColorScheme::ChatPane));
        }
    });
    connect(&session_.settings(), &Settings::changed, this, [this] {
        for (RoomTab* each : std::as_const(tabsByPane_)) {
            each->pane().setScrollThreshold(session_.settings().scrollThreshold());
        }
    });
    // Rooms that were opened before the window existed.
    for (int i = 0; i < rooms_.count(); ++i) {
        onRoomOpened(i);
    }
    onSelectionChanged(rooms_.selected());
    resize(760, 480);
}

ChatRoom::~ChatRoom() = default;

QAction* ChatRoom::addCommand(QMenu* menu, const QString& name, const QString& caption) {
    QAction* action = menu->addAction(caption);
    action->setObjectName(name);
    actions_.insert(name, action);
    return action;
}

void ChatRoom::buildMenus() {
    QMenu* channel = menuBar()->addMenu(tr("&Channel"));
    connect(addCommand(channel, QStringLiteral("joinroom"), tr("&Join Channel..")),
            &QAction::triggered, this, &ChatRoom::promptJoin);
    connect(addCommand(channel, QStringLiteral("closewin"), tr("&Leave Channel")),
            &QAction::triggered, this, &ChatRoom::leaveSelected);
    channel->addSeparator();
    connect(addCommand(channel, QStringLiteral("findchat"), tr("&Find Channels..")),
            &QAction::triggered, this, [this] {
                rooms_.directory().request();
                host_.openChannelDirectory();
            });
    connect(addCommand(channel, QStringLiteral("createroom"), tr("C&reate Channel..")),
            &QAction::triggered, this, [this] { host_.openChannelCreation(); });
    connect(addCommand(channel, QStringLiteral("inviteuser"), tr("&Invite User..")),
            &QAction::triggered, this, [this] { host_.openInviteSender(); });
    channel->addSeparator();
    connect(addCommand(channel, QStringLiteral("clearpane"), tr("C&lear Window")),
            &QAction::triggered, this, [this] { rooms_.clearPane(rooms_.selected()); });
    connect(addCommand(channel, QStringLiteral("copy"), tr("&Copy")), &QAction::triggered, this,
            &ChatRoom::copyPane);
    connect(addCommand(channel, QStringLiteral("smileys"), tr("&Smileys..")), &QAction::triggered,
            this, [this] {
                if (RoomTab* current = selectedTab()) {
                    openSmileys(&current->input());
                }
            });
    channel->addSeparator();
    connect(addCommand(channel, QStringLiteral("exitwin"), tr("Close &Window")),
            &QAction::triggered, this, &QWidget::close);

    QMenu* server = menuBar()->addMenu(tr("&Server"));
    const std::pair<const char*, QString> serverCommands[] = {
        {"topic", tr("Channel &Topic")},     {"motd", tr("&Message of the Day")},
        {"stats", tr("Server &Statistics")}, {"time", tr("Server T&ime")},
        {"help", tr("Server &Commands")},
    };
    for (const auto& [command, caption] : serverCommands) {
        const QString name = QString::fromLatin1(command);
        connect(addCommand(server, name, caption), &QAction::triggered, this,
                [this, name] { sendServerCommand(QLatin1Char('/') + name); });
    }

    // The server decides who may do what; everybody sees the same items.
    QMenu* moderate = menuBar()->addMenu(tr("&Moderate"));
    const std::pair<const char*, QString> roomItems[] = {
        {"mlistban", tr("&Ban List")},
        {"voter", tr("Start a &Vote..")},
        {"voteyes", tr("Vote &Yes")},
        {"voteno", tr("Vote &No")},
    };
    for (const auto& [item, caption] : roomItems) {
        const QString name = QString::fromLatin1(item);
        connect(addCommand(moderate, name, caption), &QAction::triggered, this,
                [this, name] { moderation_->onRoomItem(name); });
        if (name == QLatin1String("mlistban")) {
            moderate->addSeparator();
        }
    }

    tabMenu_ = new QMenu(this);
    tabMenu_->addAction(actions_.value(QStringLiteral("closewin")));
    tabMenu_->addAction(actions_.value(QStringLiteral("copy")));
    tabMenu_->addAction(actions_.value(QStringLiteral("smileys")));
}

void ChatRoom::buildStatusBar() {
    channelLabel_ = new QLabel(this);
    channelLabel_->setObjectName(QStringLiteral("channelStatus"));
    usersLabel_ = new QLabel(this);
    usersLabel_->setObjectName(QStringLiteral("usersStatus"));
    flooder_ = new QProgressBar(this);
    flooder_->setObjectName(QStringLiteral("Flooder"));
    flooder_->setTextVisible(false);
    flooder_->setFixedWidth(80);
    flooder_->setMaximumHeight(12);
    flooder_->setToolTip(
        tr("Flood meter: it fills with every line you send and empties over "
           "time. While it is full, your lines wait."));
    FloodMeter& meter = rooms_.flooder();
    flooder_->setRange(0, meter.maximum());
    flooder_->setValue(meter.value());
    connect(&meter, &FloodMeter::valueChanged, this, [this](int value) {
        flooder_->setMaximum(rooms_.flooder().maximum());
        flooder_->setValue(value);
    });
    statusBar()->addWidget(channelLabel_, 1);
    statusBar()->addWidget(usersLabel_);
    statusBar()->addPermanentWidget(flooder_);
}

RoomTab* ChatRoom::tab(int index) const {
    if (index < 0 || index >= rooms_.count()) {
        return nullptr;
    }
    return tabsByPane_.value(rooms_.room(index).paneIndex);
}

RoomTab* ChatRoom::selectedTab() const {
    return tab(rooms_.selected());
}

QString ChatRoom::channelStatus() const {
    return channelLabel_->text();
}

QString ChatRoom::usersStatus() const {
    return usersLabel_->text();
}

void ChatRoom::onRoomOpened(int index) {
    const Room& opened = rooms_.room(index);
    auto* page = new RoomTab(session_.dataRoot(), stack_);
    ResetChatPane(page->pane(), session_.settings().values().color(ColorScheme::ChatPane));
    page->pane().setScrollThreshold(session_.settings().scrollThreshold());
    tabsByPane_.insert(opened.paneIndex, page);
    stack_->addWidget(page);
    connect(page, &RoomTab::sendRequested, this, [this, page](const QString&) {
        if (page == selectedTab()) {
            sendInput();
        }
    });
    connect(page, &RoomTab::leaveRequested, this, &ChatRoom::leaveSelected);
    connect(page, &RoomTab::smileyRequested, this, &ChatRoom::openSmileys);
    connect(page, &RoomTab::memberMenuRequested, this, &ChatRoom::showMemberMenu);
    {
        const QSignalBlocker block(tabs_);
        tabs_->insertTab(index, opened.name);
    }
    page->setMembers(opened.members);
    if (isHidden()) {
        show();
    }
    raise();
    activateWindow();
    refreshTitle();
}

void ChatRoom::onRoomRemoved(int index, int paneIndex) {
    {
        const QSignalBlocker block(tabs_);
        tabs_->removeTab(index);
    }
    if (RoomTab* gone = tabsByPane_.take(paneIndex)) {
        stack_->removeWidget(gone);
        gone->deleteLater();
    }
    refreshTitle();
}

void ChatRoom::onMembersChanged(int index) {
    RoomTab* target = tab(index);
    if (target == nullptr) {
        return;
    }
    target->setMembers(rooms_.room(index).members);
    if (index == rooms_.selected()) {
        usersLabel_->setText(tr("Users: ") + QString::number(target->memberCount()));
    }
}

void ChatRoom::onUnreadChanged(int index) {
    if (index >= 0 && index < tabs_->count()) {
        tabs_->setTabIcon(index, rooms_.room(index).unread ? RoomIcons::unread() : QIcon());
    }
}

void ChatRoom::onTabClicked(int index) {
    if (!syncingTabs_) {
        rooms_.select(index);
    }
}

void ChatRoom::onSelectionChanged(int index) {
    RoomTab* current = tab(index);
    if (index >= 0 && tabs_->currentIndex() != index) {
        syncingTabs_ = true;
        tabs_->setCurrentIndex(index);
        syncingTabs_ = false;
    }
    if (current == nullptr) {
        channelLabel_->setText(tr("No channel open. Join one from the Channel menu."));
        usersLabel_->clear();
        refreshTitle();
        return;
    }
    stack_->setCurrentWidget(current);
    channelLabel_->setText(tr("Channel: ") + rooms_.room(index).name);
    usersLabel_->setText(tr("Users: ") + QString::number(current->memberCount()));
    refreshTitle();
    current->input().setFocus();
}

void ChatRoom::refreshTitle() {
    const int count = tabs_->count();
    setWindowTitle(kTitle +
                   (count == 1 ? QStringLiteral(" Channel: (") : QStringLiteral(" Channels: (")) +
                   QString::number(count) + QLatin1Char(')'));
}

void ChatRoom::sendInput() {
    RoomTab* current = selectedTab();
    if (current == nullptr) {
        return;
    }
    const QString text = current->input().text();
    const int index = rooms_.selected();
    if (commands_->submit(index, text)) {
        current->input().remember(text);
        current->input().clear();
    }
}

void ChatRoom::leaveSelected() {
    rooms_.leave(rooms_.selected());
}

void ChatRoom::showTabMenu(const QPoint& at) {
    const int index = tabs_->tabAt(at);
    if (index < 0) {
        return;
    }
    rooms_.select(index);
    QAction* close = actions_.value(QStringLiteral("closewin"));
    close->setText(QStringLiteral("[X] Leave: ") + tabs_->tabText(index));
    tabMenu_->exec(tabs_->mapToGlobal(at));
    close->setText(tr("&Leave Channel"));
}

void ChatRoom::showMemberMenu(const QString& listedName, const QPoint& globalPos) {
    const QString name = StripRankMarks(listedName);
    QMenu menu(this);
    menu.setObjectName(QStringLiteral("memberMenu"));
    addModerationItems(menu, name);
    QAction* ignore = menu.addAction(tr("I&gnore %1").arg(name));
    ignore->setObjectName(QStringLiteral("ignore"));
    connect(ignore, &QAction::triggered, this, [this, listedName] { ignoreMember(listedName); });
    menu.addSeparator();
    QAction* message = menu.addAction(tr("Send Private &Message"));
    message->setObjectName(QStringLiteral("sendpm"));
    connect(message, &QAction::triggered, this,
            [this, name] { session_.privateChats().openConversation(name); });
    QAction* buddy = menu.addAction(
        session_.buddies().contains(name) ? tr("Already in Buddy List...") : tr("&Add Buddy"));
    buddy->setObjectName(QStringLiteral("addbuddy"));
    buddy->setEnabled(!session_.buddies().contains(name));
    connect(buddy, &QAction::triggered, this, [this, name] { session_.buddies().addBuddy(name); });
    // The profile comes back from the server and opens its own window.
    QAction* profile = menu.addAction(tr("View &Profile"));
    profile->setObjectName(QStringLiteral("viewit"));
    connect(profile, &QAction::triggered, this, [this, name] { session_.profiles().view(name); });
    QAction* table = menu.addAction(tr("Invite to &Table.."));
    table->setObjectName(QStringLiteral("mnu_gameinvite"));
    connect(table, &QAction::triggered, this, [this, name] { emit tableInviteRequested(name); });
    menu.exec(globalPos);
}

void ChatRoom::addModerationItems(QMenu& menu, const QString& name) {
    const std::pair<const char*, QString> items[] = {
        {"info", tr("&Info on %1").arg(name)},
        {"referal", tr("&Referrals of %1").arg(name)},
        {nullptr, {}},
        {"kick", tr("&Kick..")},
        {"chanban", tr("&Channel Ban..")},
        {"mban", tr("&Ban From All Channels..")},
        {"subnetban", tr("Subnet Ba&n..")},
        {"suspendacc", tr("S&uspend Account..")},
        {nullptr, {}},
    };
    for (const auto& [item, caption] : items) {
        if (item == nullptr) {
            menu.addSeparator();
            continue;
        }
        QAction* action = menu.addAction(caption);
        const QString itemName = QString::fromLatin1(item);
        action->setObjectName(itemName);
        connect(action, &QAction::triggered, this,
                [this, itemName, name] { moderation_->onMemberItem(itemName, name); });
    }
}

void ChatRoom::sendServerCommand(const QString& command) {
    if (rooms_.selected() >= 0) {
        rooms_.sendLine(rooms_.selected(), command);
    }
}

void ChatRoom::ignoreMember(const QString& listedName) {
    switch (rooms_.ignoreMember(rooms_.selected(), listedName)) {
        case RoomSession::IgnoreResult::Self:
            prompter_.message(QStringLiteral("You can't ignore yourself. (Can You?...)"),
                              QStringLiteral("Error!"), Prompter::Icon::Warning);
            return;
        case RoomSession::IgnoreResult::Already:
        case RoomSession::IgnoreResult::Ignored:
        case RoomSession::IgnoreResult::NoName:
            return;
    }
}

void ChatRoom::copyPane() {
    RoomTab* current = selectedTab();
    if (current == nullptr) {
        return;
    }
    ChatPane& pane = current->pane();
    const QString selection = pane.textCursor().selectedText();
    QApplication::clipboard()->setText(selection.isEmpty() ? pane.toPlainText() : selection);
}

void ChatRoom::openSmileys(QWidget* anchor) {
    if (smileys_ == nullptr) {
        smileys_ = new SmileyPicker(session_.dataRoot(), this);
        connect(smileys_, &SmileyPicker::smileyChosen, this, [this](const QString& code) {
            if (RoomTab* current = selectedTab()) {
                current->input().insertCode(code);
            }
        });
    }
    smileys_->popupBelow(anchor);
}

void ChatRoom::promptJoin() {
    const auto channel =
        prompter_.askText(QStringLiteral("Enter Channel Name"), QStringLiteral("Join Channel"),
                          QStringLiteral("Tavren General Chat"));
    if (channel && !channel->trimmed().isEmpty()) {
        rooms_.join(channel->trimmed());
    }
}

void ChatRoom::closeEvent(QCloseEvent* event) {
    // Closing the window leaves every channel; it opens again with the next join.
    rooms_.leaveAll();
    event->accept();
}

}  // namespace tavren
