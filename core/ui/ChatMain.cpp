#include "core/ui/ChatMain.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QSplitter>
#include <QStatusBar>
#include <QSystemTrayIcon>
#include <QTextBrowser>
#include <QToolBar>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <utility>

#include "config/ui/ChatConfig.h"
#include "contacts/BuddyEditor.h"
#include "contacts/BuddyList.h"
#include "contacts/ui/BuddyListSetup.h"
#include "contacts/ui/BuddyTree.h"
#include "contacts/ui/ChatBuddy.h"
#include "contacts/ui/ContactWindows.h"
#include "contacts/ui/MailIcons.h"
#include "core/AwayMenuModel.h"
#include "core/ClientSession.h"
#include "core/ConnectedClock.h"
#include "core/LoginFlow.h"
#include "core/ServerConnection.h"
#include "core/ServerSession.h"
#include "core/UpdateDownload.h"
#include "core/ui/AboutDialog.h"
#include "core/ui/AppIcon.h"
#include "core/ui/ChatHelp.h"
#include "core/ui/ChatNewAway.h"
#include "core/ui/ChatUpdate.h"
#include "core/ui/ConnectionWindows.h"
#include "core/ui/DesktopNotices.h"
#include "core/ui/MessageBoxPrompter.h"
#include "core/ui/ToolBarIcons.h"
#include "games/ui/GameWindows.h"
#include "pm/ui/ChatPM.h"
#include "render/ui/ChatNickFormat.h"
#include "rooms/ui/ChannelWindows.h"
#include "rooms/ui/ChatRoom.h"
#include "utils/ui/WindowKeeper.h"
#include "utils/ui/cMagneticWnd.h"
#include "web/ui/ChatNews.h"
#include "web/ui/ChatRadio.h"

namespace tavren {

namespace {
const QString kWindowName = QStringLiteral("ChatMain");
const QString kOfflineCaption = QStringLiteral("Tavren Chat Offline (?\?)");
}  // namespace

ChatMain::ChatMain(ClientSession& session, QWidget* parent)
    : QMainWindow(parent),
      session_(session),
      prompter_(std::make_unique<MessageBoxPrompter>(this)) {
    setObjectName(kWindowName);
    setWindowIcon(AppIcon::make(false));
    setMinimumSize(220, 360);
    connectionWindows_ = new ConnectionWindows(session_.server(), *prompter_, this);
    channelWindows_ = new ChannelWindows(session_, *prompter_, *this, this);
    contactWindows_ = new ContactWindows(session_, *prompter_, this);
    gameWindows_ = new GameWindows(session_, *prompter_, this);
    buildMenus();
    buildCentralArea();
    buildStatusBar();
    buildTrayIcon();
    notices_ = new DesktopNotices(
        session_.settings(), tray_, [] { return QApplication::activeWindow() != nullptr; }, this);
    connect(&session_.server().login(), &LoginFlow::updateDownloadRequested, this,
            &ChatMain::openUpdate);
    connect(contactWindows_, &ContactWindows::radioRequested, this,
            [this](const QString& station) { openRadio(station); });
    connect(notices_, &DesktopNotices::conversationWanted, this,
            [this](const QString& user) { session_.privateChats().openConversation(user); });
    setOnlineLook(false);
    followServerSession();
    followMailbox();

    Settings& settings = session_.settings();
    connect(&settings, &Settings::changed, this, &ChatMain::applyViewSettings);
    connect(&settings, &Settings::showAdsChanged, this, &ChatMain::applyViewSettings);
    connect(&settings, &Settings::showToolsChanged, this, &ChatMain::applyViewSettings);
    connect(&session_.awayMessages(), &AwayMessages::changed, this, &ChatMain::rebuildAwayMenu);
    connect(&session_.awayStatus(), &AwayStatus::changed, this, &ChatMain::rebuildAwayMenu);
    connect(&session_.server(), &ServerSession::onlineChanged, this, &ChatMain::rebuildAwayMenu);
    applyViewSettings();
    rebuildAwayMenu();

    // Wide enough for the tool bar's buttons and every field of the status bar, a six-digit
    // score among them (chips won at the tables are the score); never taller or wider than a
    // small (or strongly scaled) screen.
    QSize defaultSize(420, 580);
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        defaultSize = defaultSize.boundedTo(screen->availableGeometry().size());
    }
    resize(defaultSize);
    // Every window's placement, minimum size and translucency, and the magnet between them.
    windowKeeper_ = new WindowKeeper(session_.settings(), session_.store(), this);
    magnet_ = new cMagneticWnd(this, SnapGeometry::kDefaultDistance, this);
}

ChatMain::~ChatMain() {
    delete roomWindow_;
    delete pmWindow_;
}

QAction* ChatMain::addCommand(QMenu* menu, const QString& name, const QString& caption,
                              bool available) {
    auto* action = menu->addAction(caption);
    action->setObjectName(name);
    // Commands of features that are not part of this client yet stay visible but unavailable.
    action->setEnabled(available);
    actions_.insert(name, action);
    return action;
}

void ChatMain::buildMenus() {
    QMenu* tavrenMenu = menuBar()->addMenu(QStringLiteral("&Tavren"));
    ConnectionWindows* windows = connectionWindows_;
    connect(addCommand(tavrenMenu, QStringLiteral("loginoff"), QStringLiteral("&Login.."), true),
            &QAction::triggered, windows, &ConnectionWindows::loginOrLogOff);
    connect(addCommand(tavrenMenu, QStringLiteral("nickswitch"),
                       QStringLiteral("S&witch Account.."), true),
            &QAction::triggered, windows, &ConnectionWindows::switchAccount);
    connect(addCommand(tavrenMenu, QStringLiteral("currentnick"),
                       QStringLiteral("&Current Account.."), false),
            &QAction::triggered, windows, &ConnectionWindows::showCurrentAccount);
    tavrenMenu->addSeparator();
    connect(addCommand(tavrenMenu, QStringLiteral("changepassword"),
                       QStringLiteral("Change &Password.."), false),
            &QAction::triggered, windows, &ConnectionWindows::changePassword);
    connect(addCommand(tavrenMenu, QStringLiteral("mnueditemail"),
                       QStringLiteral("Change &E-mail.."), false),
            &QAction::triggered, windows, &ConnectionWindows::changeEmail);
    connect(addCommand(tavrenMenu, QStringLiteral("formatnickname"),
                       QStringLiteral("&Nickname Format.."), false),
            &QAction::triggered, this, &ChatMain::openNicknameFormat);
    connect(addCommand(tavrenMenu, QStringLiteral("editprofile"), QStringLiteral("Edit P&rofile.."),
                       false),
            &QAction::triggered, this, &ChatMain::openProfileEditor);
    tavrenMenu->addSeparator();
    connect(addCommand(tavrenMenu, QStringLiteral("config"), QStringLiteral("&Settings.."), true),
            &QAction::triggered, this, [this] { openSettings(); });
    connect(addCommand(tavrenMenu, QStringLiteral("console"), QStringLiteral("Ser&ver Console.."),
                       true),
            &QAction::triggered, windows, &ConnectionWindows::showConsole);
    // The error window stays in the background for troubles that mend themselves; this is
    // the way to read it.
    connect(
        addCommand(tavrenMenu, QStringLiteral("errorlog"), QStringLiteral("Error Lo&g.."), true),
        &QAction::triggered, windows, &ConnectionWindows::showErrors);
    tavrenMenu->addSeparator();
    connect(addCommand(tavrenMenu, QStringLiteral("exittavren"), QStringLiteral("E&xit"), true),
            &QAction::triggered, this, &QWidget::close);

    QMenu* chatMenu = menuBar()->addMenu(QStringLiteral("&Chat"));
    connect(
        addCommand(chatMenu, QStringLiteral("joinroom"), QStringLiteral("&Join Channel.."), false),
        &QAction::triggered, this, &ChatMain::promptJoinChannel);
    connect(
        addCommand(chatMenu, QStringLiteral("findchat"), QStringLiteral("&Find Channels.."), false),
        &QAction::triggered, channelWindows_, &ChannelWindows::openDirectory);
    connect(addCommand(chatMenu, QStringLiteral("createroom"), QStringLiteral("&Create Channel.."),
                       false),
            &QAction::triggered, channelWindows_, &ChannelWindows::openCreation);
    connect(
        addCommand(chatMenu, QStringLiteral("inviteuser"), QStringLiteral("&Invite User.."), false),
        &QAction::triggered, channelWindows_, [this] { channelWindows_->openInviteSender(); });
    chatMenu->addSeparator();
    connect(addCommand(chatMenu, QStringLiteral("sendmsg"),
                       QStringLiteral("Send &Private Message.."), false),
            &QAction::triggered, this, &ChatMain::promptPrivateMessage);
    connect(addCommand(chatMenu, QStringLiteral("readmessages"),
                       QStringLiteral("&Read Messages (0).."), false),
            &QAction::triggered, contactWindows_, &ContactWindows::openMail);
    chatMenu->addSeparator();
    connect(
        addCommand(chatMenu, QStringLiteral("locateuser"), QStringLiteral("&Locate User.."), false),
        &QAction::triggered, this, &ChatMain::promptLocateUser);
    connect(addCommand(chatMenu, QStringLiteral("membersearch"), QStringLiteral("Member &Search.."),
                       false),
            &QAction::triggered, contactWindows_, &ContactWindows::openSearch);

    QMenu* buddyMenu = menuBar()->addMenu(QStringLiteral("&Buddies"));
    connect(
        addCommand(buddyMenu, QStringLiteral("mnuaddbuddy"), QStringLiteral("&Add Buddy.."), false),
        &QAction::triggered, this,
        [this] { BuddyEditor::askAndAddTo(session_.buddies(), *prompter_); });
    connect(addCommand(buddyMenu, QStringLiteral("editbuddys"), QStringLiteral("&Edit Buddies.."),
                       false),
            &QAction::triggered, this,
            [this] { ChatBuddy::open(session_.buddies(), *prompter_, this); });
    // The setup holds the client's own preferences: it needs no server.
    connect(addCommand(buddyMenu, QStringLiteral("mnusetupb"),
                       QStringLiteral("Buddy List &Setup.."), true),
            &QAction::triggered, this, [this] { BuddyListSetup::open(session_.buddies(), this); });
    buddyMenu->addSeparator();
    connect(addCommand(buddyMenu, QStringLiteral("newaway"), QStringLiteral("&New Away Message.."),
                       false),
            &QAction::triggered, this, [this] {
                if (session_.awayStatus().away()) {
                    session_.awayStatus().comeBack();
                } else {
                    openNewAway();
                }
            });
    connect(addCommand(buddyMenu, QStringLiteral("Editawaym"),
                       QStringLiteral("&Edit Away Messages.."), true),
            &QAction::triggered, this, [this] { openSettings(ChatConfig::Page::AwayMessages); });

    QMenu* gameMenu = menuBar()->addMenu(QStringLiteral("&Games"));
    connect(
        addCommand(gameMenu, QStringLiteral("jointable"), QStringLiteral("&Join Table.."), false),
        &QAction::triggered, gameWindows_, &GameWindows::promptJoinTable);
    connect(addCommand(gameMenu, QStringLiteral("mnufindtable"), QStringLiteral("&Find Tables.."),
                       false),
            &QAction::triggered, gameWindows_, &GameWindows::openLobby);
    connect(addCommand(gameMenu, QStringLiteral("mnucreatetable"),
                       QStringLiteral("&Create Table.."), false),
            &QAction::triggered, gameWindows_, &GameWindows::openCreation);
    connect(addCommand(gameMenu, QStringLiteral("mnu_gameinvite"),
                       QStringLiteral("&Invite to Table.."), false),
            &QAction::triggered, gameWindows_, [this] { gameWindows_->openInvite(); });

    QMenu* viewMenu = menuBar()->addMenu(QStringLiteral("&View"));
    QAction* toolbar =
        addCommand(viewMenu, QStringLiteral("mnuToolbar"), QStringLiteral("&Tool Bar"), true);
    toolbar->setCheckable(true);
    connect(toolbar, &QAction::triggered, this,
            [this](bool on) { session_.settings().setShowTools(on); });
    QAction* ads =
        addCommand(viewMenu, QStringLiteral("showads"), QStringLiteral("&News Pane"), true);
    ads->setCheckable(true);
    connect(ads, &QAction::triggered, this,
            [this](bool on) { session_.settings().setShowAds(on); });
    viewMenu->addSeparator();
    connect(addCommand(viewMenu, QStringLiteral("news"), QStringLiteral("N&ews.."), true),
            &QAction::triggered, this, &ChatMain::openNews);
    connect(addCommand(viewMenu, QStringLiteral("radio"), QStringLiteral("&Radio Player.."), true),
            &QAction::triggered, this, [this] { openRadio(); });
    viewMenu->addSeparator();
    QAction* sounds =
        addCommand(viewMenu, QStringLiteral("playsounds"), QStringLiteral("Play &Sounds"), true);
    sounds->setCheckable(true);
    connect(sounds, &QAction::triggered, this,
            [this](bool on) { session_.settings().setPlaySounds(on); });

    QMenu* helpMenu = menuBar()->addMenu(QStringLiteral("&Help"));
    connect(
        addCommand(helpMenu, QStringLiteral("helptopics"), QStringLiteral("&Help Topics.."), true),
        &QAction::triggered, this, [this] { openHelp(); });
    connect(addCommand(helpMenu, QStringLiteral("abouttavren"), QStringLiteral("&About Tavren.."),
                       true),
            &QAction::triggered, this, &ChatMain::showAbout);

    // Icons with the command as tooltip: four buttons fit the narrowest main window, where the
    // captions would push all but the first behind the overflow arrow. The tooltips follow the
    // commands' captions ("Login.." turns into "Log Off").
    toolBar_ = addToolBar(QStringLiteral("Tools"));
    toolBar_->setObjectName(QStringLiteral("toolbar"));
    toolBar_->setMovable(false);
    toolBar_->setToolButtonStyle(Qt::ToolButtonIconOnly);
    toolBar_->setIconSize(QSize(24, 24));
    const std::pair<const char*, QIcon> tools[] = {
        {"loginoff", ToolBarIcons::logInOrOff()},
        {"joinroom", ToolBarIcons::joinChannel()},
        {"sendmsg", ToolBarIcons::privateMessage()},
        {"config", ToolBarIcons::settings()},
    };
    for (const auto& [name, icon] : tools) {
        QAction* action = actions_.value(QString::fromLatin1(name));
        action->setIcon(icon);
        toolBar_->addAction(action);
    }
}

void ChatMain::buildCentralArea() {
    auto* splitter = new QSplitter(Qt::Vertical, this);
    auto* buddyArea = new QWidget(splitter);
    auto* buddyLayout = new QVBoxLayout(buddyArea);
    buddyLayout->setContentsMargins(4, 4, 4, 0);
    buddyCaption_ = new QLabel(buddyArea);
    buddyCaption_->setObjectName(QStringLiteral("buddyCaption"));
    auto* buddyTree = new BuddyTree(session_.buddies(), session_.ignoreList(), buddyArea);
    connect(buddyTree, &BuddyTree::locateRequested, this,
            [this](const QString& name) { session_.locator().locate(name); });
    connect(buddyTree, &BuddyTree::conversationRequested, this,
            [this](const QString& name) { session_.privateChats().openConversation(name); });
    connect(buddyTree, &BuddyTree::profileRequested, this,
            [this](const QString& name) { session_.profiles().view(name); });
    connect(&session_.buddies(), &BuddyList::captionChanged, buddyCaption_, &QLabel::setText);
    buddyTree_ = buddyTree;
    buddyLayout->addWidget(buddyCaption_);
    buddyLayout->addWidget(buddyTree_);

    pane_ = new QTextBrowser(splitter);
    pane_->setObjectName(QStringLiteral("pane"));
    pane_->setOpenExternalLinks(true);
    pane_->setPlaceholderText(QStringLiteral("News and the message of the day appear here."));

    splitter->addWidget(buddyArea);
    splitter->addWidget(pane_);
    splitter->setStretchFactor(0, 4);
    splitter->setStretchFactor(1, 1);
    setCentralWidget(splitter);
}

void ChatMain::buildStatusBar() {
    statusButton_ = new QToolButton(this);
    statusButton_->setObjectName(QStringLiteral("statusButton"));
    statusButton_->setPopupMode(QToolButton::InstantPopup);
    statusButton_->setText(QStringLiteral("Active"));
    statusButton_->setToolTip(QStringLiteral("Away messages"));
    awayMenu_ = new QMenu(statusButton_);
    statusButton_->setMenu(awayMenu_);

    onlineLabel_ = new QLabel(this);
    onlineLabel_->setObjectName(QStringLiteral("onlineLabel"));
    onlineLabel_->setToolTip(QStringLiteral("Members online on the server"));
    scoreLabel_ = new QLabel(this);
    scoreLabel_->setObjectName(QStringLiteral("scoreLabel"));
    scoreLabel_->setToolTip(
        QStringLiteral("Your Tavren Score: the points the server keeps for your account"));
    const QString timeHint = QStringLiteral(
        "Time connected to the server (days:hours:minutes:seconds); "
        "back to zero while offline");
    // The clock face labels the time without taking the width of a word.
    auto* timeIcon = new QLabel(this);
    timeIcon->setObjectName(QStringLiteral("connectedTimeIcon"));
    const int iconSide = timeIcon->fontMetrics().height();
    timeIcon->setPixmap(
        ToolBarIcons::connectedTime().pixmap(QSize(iconSide, iconSide), devicePixelRatioF()));
    timeIcon->setToolTip(timeHint);
    timeLabel_ = new QLabel(session_.server().clock().text(), this);
    timeLabel_->setObjectName(QStringLiteral("connectedTime"));
    timeLabel_->setToolTip(timeHint);

    // The mail image: a full envelope while mail is waiting; a click opens the mail window.
    mailButton_ = new QToolButton(this);
    mailButton_->setObjectName(QStringLiteral("mailImage"));
    mailButton_->setAutoRaise(true);
    mailButton_->setIcon(MailIcons::mailEmpty());

    statusBar()->addWidget(statusButton_);
    statusBar()->addWidget(mailButton_);
    statusBar()->addWidget(onlineLabel_, 1);
    statusBar()->addWidget(scoreLabel_);
    // The padlock: shut while the link is encrypted, open while it is plain, not there offline.
    padlockLabel_ = new QLabel(this);
    padlockLabel_->setObjectName(QStringLiteral("encryptionPadlock"));
    padlockLabel_->hide();
    statusBar()->addPermanentWidget(padlockLabel_);
    statusBar()->addPermanentWidget(timeIcon);
    statusBar()->addPermanentWidget(timeLabel_);
    connect(&session_.server().connection(), &ServerConnection::encryptionChanged, this,
            &ChatMain::showEncryption);

    // Offline, the label says whether the client is getting back on its own; the last line
    // about the connection is its tooltip.
    ServerSession& server = session_.server();
    connect(&server.login(), &LoginFlow::buttonChanged, this, [this](const LoginButton& button) {
        const LoginFlow& login = session_.server().login();
        if (login.online()) {
            return;
        }
        QString text = QStringLiteral("Offline");
        if (button.kind == LoginButton::Kind::Countdown) {
            text = QStringLiteral("Offline, reconnecting..");
        } else if (button.kind == LoginButton::Kind::Cancel) {
            text = login.mode() == LoginFlow::Mode::New ? QStringLiteral("Signing up..")
                                                        : QStringLiteral("Connecting..");
        }
        onlineLabel_->setText(text);
    });
    connect(&server.connection(), &ServerConnection::statusLine, onlineLabel_, &QLabel::setToolTip);
}

void ChatMain::buildTrayIcon() {
    if (!QSystemTrayIcon::isSystemTrayAvailable()) {
        return;
    }
    tray_ = new QSystemTrayIcon(AppIcon::make(false), this);
    auto* trayMenu = new QMenu(this);
    trayMenu->addAction(QStringLiteral("&Show Tavren"), this, [this] {
        showNormal();
        raise();
        activateWindow();
    });
    trayMenu->addAction(QStringLiteral("&Settings.."), this, [this] { openSettings(); });
    trayMenu->addSeparator();
    trayMenu->addAction(QStringLiteral("E&xit"), this, &QWidget::close);
    tray_->setContextMenu(trayMenu);
    connect(tray_, &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason != QSystemTrayIcon::Trigger && reason != QSystemTrayIcon::DoubleClick) {
                    return;
                }
                if (isVisible() && !isMinimized()) {
                    hide();
                } else {
                    showNormal();
                    raise();
                    activateWindow();
                }
            });
    tray_->show();
}

void ChatMain::showEncryption() {
    const ServerConnection& connection = session_.server().connection();
    if (!connection.linkUp()) {
        padlockLabel_->hide();
        return;
    }
    const int side = padlockLabel_->fontMetrics().height();
    padlockLabel_->setPixmap(ToolBarIcons::padlock(connection.encrypted())
                                 .pixmap(QSize(side, side), devicePixelRatioF()));
    padlockLabel_->setToolTip(connection.encryptionDetails());
    padlockLabel_->show();
}

void ChatMain::setOnlineLook(bool online) {
    for (const char* name : {"currentnick", "changepassword", "mnueditemail", "joinroom",
                             "formatnickname", "locateuser", "sendmsg"}) {
        actions_.value(QString::fromLatin1(name))->setEnabled(online);
    }
    for (const char* name : {"mnuaddbuddy", "editbuddys"}) {
        actions_.value(QString::fromLatin1(name))->setEnabled(online);
    }
    for (const char* name : {"findchat", "createroom", "inviteuser"}) {
        actions_.value(QString::fromLatin1(name))->setEnabled(online);
    }
    for (const char* name : {"editprofile", "readmessages", "membersearch"}) {
        actions_.value(QString::fromLatin1(name))->setEnabled(online);
    }
    for (const char* name : {"jointable", "mnufindtable", "mnucreatetable", "mnu_gameinvite"}) {
        actions_.value(QString::fromLatin1(name))->setEnabled(online);
    }
    mailButton_->setEnabled(online);
    actions_.value(QStringLiteral("loginoff"))
        ->setText(online ? QStringLiteral("Log &Off") : QStringLiteral("&Login.."));
    if (tray_ != nullptr) {
        tray_->setIcon(AppIcon::make(online));
    }
    setWindowIcon(AppIcon::make(online));
    if (online) {
        return;
    }
    // Going offline undoes everything that login set up.
    setWindowTitle(kOfflineCaption);
    if (tray_ != nullptr) {
        tray_->setToolTip(kOfflineCaption);
    }
    buddyCaption_->setText(QStringLiteral("Buddies (0)"));
    buddyTree_->clear();
    onlineLabel_->setText(QStringLiteral("Offline"));
    scoreLabel_->clear();
}

void ChatMain::followServerSession() {
    ServerSession& server = session_.server();
    connect(&server, &ServerSession::onlineChanged, this, &ChatMain::setOnlineLook);
    connect(&server, &ServerSession::captionChanged, this, [this](const QString& caption) {
        setWindowTitle(caption);
        if (tray_ != nullptr) {
            tray_->setToolTip(caption);
        }
    });
    connect(&server, &ServerSession::onlineCountChanged, onlineLabel_, &QLabel::setText);
    connect(&server, &ServerSession::scoreChanged, scoreLabel_, &QLabel::setText);
    // The pane shows the message of the day and the server's news, as the feed has them.
    NewsFeed& news = session_.web().news();
    connect(&news, &NewsFeed::paneChanged, this,
            [this] { pane_->setHtml(session_.web().news().paneHtml()); });
    connect(&session_.locator(), &MemberLocator::located, this, [this](const QString& sentence) {
        prompter_->message(sentence, QStringLiteral("Locate User"), Prompter::Icon::Information);
    });
    // The conversation window comes with the first conversation, like the room window.
    PrivateChats& chats = session_.privateChats();
    connect(&chats, &PrivateChats::conversationOpened, this, [this] {
        if (pmWindow_ == nullptr) {
            pmWindow_ = new ChatPM(session_, nullptr);
            pmWindow_->setAttribute(Qt::WA_QuitOnClose, false);
        }
    });
    connect(&session_.buddies(), &BuddyList::buddyOnlineNotice, notices_,
            &DesktopNotices::buddyOnline);
    connect(&chats, &PrivateChats::messageArrived, this,
            [this](const QString& user, const QString& text, bool) {
                notices_->privateMessage(user, text);
            });
    // The room window comes with the first channel and stays for the next.
    connect(&session_.rooms(), &RoomSession::roomOpened, this, [this] {
        if (roomWindow_ == nullptr) {
            roomWindow_ = new ChatRoom(session_, *this, *prompter_, nullptr);
            roomWindow_->setAttribute(Qt::WA_QuitOnClose, false);
            connect(roomWindow_, &ChatRoom::tableInviteRequested, gameWindows_,
                    [this](const QString& member) { gameWindows_->openInvite(member); });
        }
    });
    connect(&server.clock(), &ConnectedClock::textChanged, timeLabel_, &QLabel::setText);
}

void ChatMain::followMailbox() {
    Mailbox& mailbox = session_.mailbox();
    const auto showCount = [this] {
        const Mailbox& box = session_.mailbox();
        actions_.value(QStringLiteral("readmessages"))->setText(box.menuCaption());
        mailButton_->setIcon(box.count() > 0 ? MailIcons::mailFull() : MailIcons::mailEmpty());
        mailButton_->setToolTip(
            box.count() > 0
                ? tr("%n message(s) in your inbox. Click to read them.", "", box.count())
                : tr("No mail. Click to open the mail window."));
    };
    connect(&mailbox, &Mailbox::countChanged, this, showCount);
    showCount();
    connect(mailButton_, &QToolButton::clicked, contactWindows_, &ContactWindows::openMail);
    connect(&mailbox, &Mailbox::newMail, notices_, &DesktopNotices::newMail);
    connect(notices_, &DesktopNotices::mailWanted, contactWindows_, &ContactWindows::openMail);
}

void ChatMain::openProfileEditor() {
    if (session_.server().online()) {
        contactWindows_->openProfileEditor();
    }
}

void ChatMain::applyViewSettings() {
    const Settings& settings = session_.settings();
    pane_->setVisible(settings.showAds());
    toolBar_->setVisible(settings.showTools());
    actions_.value(QStringLiteral("showads"))->setChecked(settings.showAds());
    actions_.value(QStringLiteral("mnuToolbar"))->setChecked(settings.showTools());
    actions_.value(QStringLiteral("playsounds"))->setChecked(settings.values().playSounds);
    setWindowOpacity(settings.values().windowOpacity());
}

void ChatMain::rebuildAwayMenu() {
    awayMenu_->clear();
    QStringList names;
    for (const AwayMessage& message : session_.awayMessages().entries()) {
        names << message.name;
    }
    const bool online = session_.server().online();
    const bool away = session_.awayStatus().away();
    statusButton_->setText(away ? QStringLiteral("Away") : QStringLiteral("Active"));
    QAction* newAway = actions_.value(QStringLiteral("newaway"));
    newAway->setText(away ? QStringLiteral("Set Yourself &Back..")
                          : QStringLiteral("&New Away Message.."));
    newAway->setEnabled(online);
    statusButton_->setToolTip(away ? session_.awayStatus().message()
                                   : QStringLiteral("Away messages"));
    for (const AwayMenuModel::Item& item : AwayMenuModel::build(names, away)) {
        if (item.isSeparator()) {
            awayMenu_->addSeparator()->setObjectName(item.key);
            continue;
        }
        QAction* action = awayMenu_->addAction(item.caption);
        action->setObjectName(item.key);
        // Going away and coming back need the server; the editor works offline too.
        action->setEnabled(online || item.key == QLatin1String("edt"));
        connect(action, &QAction::triggered, this, [this, key = item.key] { onAwayMenuItem(key); });
    }
}

void ChatMain::onAwayMenuItem(const QString& key) {
    if (key == QLatin1String("edt")) {
        openSettings(ChatConfig::Page::AwayMessages);
    } else if (key == QLatin1String("new")) {
        openNewAway();
    } else if (key == QLatin1String("back")) {
        session_.awayStatus().comeBack();
    } else if (const int index = AwayMenuModel::awayIndex(key); index >= 0) {
        const auto& entries = session_.awayMessages().entries();
        if (index < entries.size()) {
            session_.awayStatus().goAway(entries[index].text);
        }
    }
}

void ChatMain::openNewAway() {
    ChatNewAway dialog(session_.awayStatus(), session_.awayMessages(), *prompter_, this);
    dialog.exec();
}

void ChatMain::openSettings(ChatConfig::Page page) {
    if (settingsWindow_ == nullptr) {
        settingsWindow_ = new ChatConfig(session_.settings(), session_.dataFiles(), *prompter_,
                                         &session_.sounds(), this);
        connect(settingsWindow_, &ChatConfig::opacityPreviewed, windowKeeper_,
                &WindowKeeper::previewOpacity);
    }
    settingsWindow_->openAt(page);
}

void ChatMain::promptJoinChannel() {
    const auto channel =
        prompter_->askText(QStringLiteral("Enter Channel Name"), QStringLiteral("Join Channel"),
                           QStringLiteral("Tavren General Chat"));
    if (channel && !channel->trimmed().isEmpty()) {
        session_.rooms().join(channel->trimmed());
    }
}

void ChatMain::promptPrivateMessage() {
    const auto name = prompter_->askText(QStringLiteral("Enter user name:"),
                                         QStringLiteral("Send Private Message"), QString());
    if (name && !name->trimmed().isEmpty()) {
        session_.privateChats().openConversation(name->trimmed());
    }
}

void ChatMain::promptLocateUser() {
    const auto name = prompter_->askText(QStringLiteral("Enter user name:"),
                                         QStringLiteral("Locate User"), QString());
    if (name) {
        session_.locator().locate(*name);
    }
}

void ChatMain::openNicknameFormat() {
    LoginFlow& login = session_.server().login();
    // The account data is name ";" staff level ";" format; the format may hold ";" itself.
    const QString current = login.accountData().section(QLatin1Char(';'), 2);
    ChatNickFormat dialog(current, login.userName(), session_.dataRoot(), this);
    if (dialog.exec() == QDialog::Accepted) {
        session_.server().accountRequests().changeNicknameFormat(dialog.formatText());
    }
}

void ChatMain::lookUpWeather(const QString& channel, const QString& postalCode) {
    session_.web().lookUpWeather(channel, postalCode);
}

void ChatMain::lookUpRadio(const QString& channel) {
    session_.web().lookUpRadio(channel);
}

void ChatMain::openNews() {
    if (newsWindow_ == nullptr) {
        newsWindow_ = new ChatNews(session_.web().news(), this);
    }
    newsWindow_->show();
    newsWindow_->raise();
    newsWindow_->activateWindow();
}

void ChatMain::openRadio(const QString& station) {
    if (radioWindow_ == nullptr) {
        radioWindow_ = new ChatRadio(session_.web(), this);
    }
    radioWindow_->showStation(station);
}

void ChatMain::openHelp(const QString& topic) {
    if (helpWindow_ == nullptr) {
        helpWindow_ = new ChatHelp(this);
    }
    helpWindow_->showTopic(topic);
}

void ChatMain::openUpdate(const QString& url, const QString& version, const QString& sha256) {
    if (sha256.isEmpty()) {
        // Nothing to check a download against: the member fetches it from the page instead.
        QDesktopServices::openUrl(QUrl(url));
        return;
    }
    if (updateWindow_ == nullptr) {
        updateWindow_ = new ChatUpdate(session_.dataRoot(), this);
    }
    if (updateWindow_->download().state() != UpdateDownload::State::Downloading) {
        updateWindow_->start(url, version, sha256);
    }
    updateWindow_->show();
    updateWindow_->raise();
}

void ChatMain::openChannelDirectory() {
    channelWindows_->showDirectory();
}

void ChatMain::openChannelCreation() {
    channelWindows_->openCreation();
}

void ChatMain::openInviteSender() {
    channelWindows_->openInviteSender();
}

void ChatMain::closeRoomWindow() {
    if (roomWindow_ != nullptr) {
        roomWindow_->close();
    }
}

void ChatMain::showAbout() {
    AboutDialog about(this);
    about.exec();
}

QString ChatMain::connectedTimeText() const {
    return timeLabel_->text();
}

QString ChatMain::paneText() const {
    return pane_->toPlainText();
}

void ChatMain::closeEvent(QCloseEvent* event) {
    // The other windows stay open until the program ends; their places are kept now, with the
    // main window's (which the keeper saw close).
    windowKeeper_->saveAll();
    session_.store().sync();
    if (tray_ != nullptr) {
        tray_->hide();
    }
    event->accept();
    // The main window is the process: closing it ends the program even if others are open.
    QApplication::quit();
}

}  // namespace tavren
