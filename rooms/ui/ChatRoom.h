#pragma once

#include <QHash>
#include <QMainWindow>
#include <memory>

class QAction;
class QLabel;
class QMenu;
class QProgressBar;
class QStackedWidget;
class QTabBar;

namespace tavren {

class ClientSession;
class Prompter;
class RoomCommandHost;
class RoomCommands;
class RoomModeration;
class RoomSession;
class RoomTab;
class SmileyPicker;

// The one window that holds every joined channel, one tab each. It shows what the room
// session holds (tabs, panes, member lists, unread marks) and hands the member's actions back
// to it; what a typed line means is decided by the room commands.
class ChatRoom : public QMainWindow {
    Q_OBJECT
  public:
    ChatRoom(ClientSession& session, RoomCommandHost& host, Prompter& prompter,
             QWidget* parent = nullptr);
    ~ChatRoom() override;

    QAction* action(const QString& name) const { return actions_.value(name); }
    QTabBar& tabs() { return *tabs_; }
    // The tab of a room by its index in the room session (tab order), or null.
    RoomTab* tab(int index) const;
    QString channelStatus() const;
    QString usersStatus() const;
    // Sends what the selected tab's input box holds, as Enter does.
    void sendInput();

  signals:
    // The member menu's "Invite to Table..": invite this member to a Hold'em table.
    void tableInviteRequested(const QString& member);

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    void buildMenus();
    void buildStatusBar();
    QAction* addCommand(QMenu* menu, const QString& name, const QString& caption);
    void onRoomOpened(int index);
    void onRoomRemoved(int index, int paneIndex);
    void onMembersChanged(int index);
    void onUnreadChanged(int index);
    void onSelectionChanged(int index);
    void onTabClicked(int index);
    void showTabMenu(const QPoint& at);
    void showMemberMenu(const QString& listedName, const QPoint& globalPos);
    void sendServerCommand(const QString& command);
    void addModerationItems(QMenu& menu, const QString& name);
    void ignoreMember(const QString& listedName);
    void leaveSelected();
    void copyPane();
    void openSmileys(QWidget* anchor);
    void promptJoin();
    void refreshTitle();
    RoomTab* selectedTab() const;

    ClientSession& session_;
    RoomSession& rooms_;
    Prompter& prompter_;
    RoomCommandHost& host_;
    std::unique_ptr<RoomCommands> commands_;
    std::unique_ptr<RoomModeration> moderation_;
    QHash<QString, QAction*> actions_;
    QHash<int, RoomTab*> tabsByPane_;
    QTabBar* tabs_ = nullptr;
    QStackedWidget* stack_ = nullptr;
    QLabel* channelLabel_ = nullptr;
    QLabel* usersLabel_ = nullptr;
    QProgressBar* flooder_ = nullptr;
    QMenu* tabMenu_ = nullptr;
    SmileyPicker* smileys_ = nullptr;
    bool syncingTabs_ = false;
};

}  // namespace tavren
