#include "contacts/ui/ChatSearch.h"

#include <QComboBox>
#include <QDesktopServices>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTimer>
#include <QTreeWidget>
#include <QUrl>
#include <QVBoxLayout>
#include <memory>

#include "config/ColumnWidths.h"
#include "contacts/BuddyList.h"
#include "contacts/MemberSearch.h"
#include "contacts/Profiles.h"
#include "core/ClientSession.h"
#include "pm/PrivateChats.h"
#include "render/ui/ChatPane.h"

namespace tavren {

namespace {
constexpr int kDefaultWidths[] = {120, 70, 130, 95, 55, 160};
// Long enough to be read, short enough to show that something is going on.
constexpr int kCaptionIntervalMs = 300;
}  // namespace

ChatSearch::ChatSearch(ClientSession& session, QWidget* parent)
    : QWidget(parent, Qt::Window), session_(session), search_(session.memberSearch()) {
    setObjectName(QStringLiteral("ChatSearch"));
    setWindowTitle(MemberSearch::idleCaption());
    auto* layout = new QVBoxLayout(this);
    auto* row = new QHBoxLayout;
    field_ = new QComboBox(this);
    field_->setObjectName(QStringLiteral("Combo1"));
    field_->addItems(MemberSearch::fields());
    field_->setToolTip(
        tr("Name: members whose name starts with the text. Email: the member with exactly "
           "this address. Profile: members whose profile holds the text."));
    text_ = new QLineEdit(this);
    text_->setObjectName(QStringLiteral("Text1"));
    text_->setPlaceholderText(tr("what to look for"));
    text_->setClearButtonEnabled(true);
    searchButton_ = new QPushButton(tr("&Search"), this);
    searchButton_->setObjectName(QStringLiteral("XPButton4"));
    searchButton_->setDefault(true);
    row->addWidget(new QLabel(tr("Find by"), this));
    row->addWidget(field_);
    row->addWidget(text_, 1);
    row->addWidget(searchButton_);
    layout->addLayout(row);

    list_ = new QTreeWidget(this);
    list_->setObjectName(QStringLiteral("List1"));
    list_->setHeaderLabels(MemberSearch::columnTitles());
    list_->setRootIsDecorated(false);
    list_->setUniformRowHeights(true);
    list_->setSortingEnabled(true);
    list_->sortByColumn(-1, Qt::AscendingOrder);
    list_->header()->setSectionsMovable(false);
    for (int column = 0; column < list_->columnCount(); ++column) {
        list_->setColumnWidth(column, ColumnWidths::read(session_.store(), ColumnWidths::Search,
                                                         column, kDefaultWidths[column]));
    }
    connect(list_->header(), &QHeaderView::sectionResized, this,
            [this](int column, int, int width) {
                if (width > 0) {
                    ColumnWidths::write(session_.store(), ColumnWidths::Search, column, width);
                }
            });
    list_->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(list_, &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
        const std::unique_ptr<QMenu> menu(menuFor(list_->itemAt(at)));
        if (menu) {
            menu->exec(list_->viewport()->mapToGlobal(at));
        }
    });
    connect(list_, &QTreeWidget::itemActivated, this,
            [this](QTreeWidgetItem* item) { session_.profiles().view(nameOf(item)); });
    layout->addWidget(list_, 1);
    hint_ = new QLabel(tr("Double-click a member for their profile; right-click for more."), this);
    hint_->setObjectName(QStringLiteral("hint"));
    hint_->setEnabled(false);
    layout->addWidget(hint_);

    timer_ = new QTimer(this);
    timer_->setObjectName(QStringLiteral("Timer1"));
    timer_->setInterval(kCaptionIntervalMs);
    connect(timer_, &QTimer::timeout, this, &ChatSearch::advanceCaption);

    connect(searchButton_, &QPushButton::clicked, this, &ChatSearch::search);
    connect(text_, &QLineEdit::returnPressed, this, &ChatSearch::search);
    connect(&search_, &MemberSearch::finished, this, &ChatSearch::showResults);
    const auto followOnline = [this](bool online) {
        searchButton_->setEnabled(online);
        text_->setEnabled(online);
    };
    connect(&session_.server(), &ServerSession::onlineChanged, this, followOnline);
    followOnline(session_.server().online());
    resize(720, 420);
}

void ChatSearch::search() {
    if (!search_.search(field_->currentText(), text_->text())) {
        return;
    }
    captionStep_ = 0;
    setWindowTitle(MemberSearch::searchingCaption(captionStep_));
    timer_->start();
}

void ChatSearch::focusText() {
    text_->setFocus();
    text_->selectAll();
}

void ChatSearch::advanceCaption() {
    captionStep_ = (captionStep_ + 1) % 4;
    setWindowTitle(MemberSearch::searchingCaption(captionStep_));
}

void ChatSearch::showResults() {
    timer_->stop();
    list_->setSortingEnabled(false);
    list_->clear();
    for (const QStringList& record : search_.results()) {
        auto* item = new QTreeWidgetItem(list_, record);
        item->setToolTip(MemberSearch::Link, record.value(MemberSearch::Link));
    }
    list_->setSortingEnabled(true);
    setWindowTitle(MemberSearch::doneCaption(static_cast<int>(search_.results().size())));
    hint_->setText(search_.cut()
                       ? tr("More members match than are shown; make the text longer to see "
                            "fewer.")
                       : tr("Double-click a member for their profile; right-click for more."));
}

QString ChatSearch::nameOf(const QTreeWidgetItem* item) const {
    return item == nullptr ? QString() : item->text(MemberSearch::Name);
}

QMenu* ChatSearch::menuFor(QTreeWidgetItem* item) {
    if (item == nullptr) {
        return nullptr;
    }
    const QString name = nameOf(item);
    const QString link = item->text(MemberSearch::Link);
    auto* menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("searchMenu"));
    const auto add = [menu](const char* objectName, const QString& caption) {
        QAction* action = menu->addAction(caption);
        action->setObjectName(QString::fromLatin1(objectName));
        return action;
    };
    BuddyList& buddies = session_.buddies();
    const bool buddy = buddies.contains(name);
    QAction* addBuddy =
        add("mnuadd", buddy ? tr("Already in Buddylist..") : tr("Add User to Buddylist.."));
    addBuddy->setEnabled(!buddy && buddies.online());
    connect(addBuddy, &QAction::triggered, this,
            [this, name] { session_.buddies().addBuddy(name); });
    connect(add("mnusendmail", tr("Send Mail..")), &QAction::triggered, this,
            [this, name] { emit mailRequested(name); });
    connect(add("mnusendpm", tr("Send Private Message..")), &QAction::triggered, this,
            [this, name] { session_.privateChats().openConversation(name); });
    connect(add("mnuprofile", tr("View Profile..")), &QAction::triggered, this,
            [this, name] { session_.profiles().view(name); });
    menu->addSeparator();
    // Only web and mail addresses open, whatever a record carries.
    const QUrl url(link, QUrl::StrictMode);
    const bool openable = !link.isEmpty() && ChatPane::isOpenableLink(url);
    QAction* launch =
        add("mnulaunch",
            openable ? tr("Open %1").arg(fontMetrics().elidedText(link, Qt::ElideMiddle, 320))
                     : tr("Open Link.."));
    launch->setEnabled(openable);
    connect(launch, &QAction::triggered, this, [url] { QDesktopServices::openUrl(url); });
    const bool online = session_.server().online();
    for (QAction* action : menu->actions()) {
        if (action->objectName() != QLatin1String("mnulaunch")) {
            action->setEnabled(action->isEnabled() && online);
        }
    }
    return menu;
}

}  // namespace tavren
