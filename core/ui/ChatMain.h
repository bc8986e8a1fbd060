#pragma once

#include <QHash>
#include <QMainWindow>
#include <memory>

#include "config/ui/ChatConfig.h"
#include "rooms/RoomCommandHost.h"

class QAction;
class QLabel;
class QMenu;
class QSystemTrayIcon;
class QTextBrowser;
class QToolBar;
class QToolButton;
class QTreeWidget;

namespace tavren {

class ChatPM;
class ChannelWindows;
class ChatRoom;
class ChatHelp;
class ChatNews;
class ChatUpdate;
class ChatRadio;
class DesktopNotices;
class ClientSession;
class ConnectionWindows;
class ContactWindows;
class GameWindows;
class Prompter;
class WindowKeeper;
class cMagneticWnd;

// The shell: buddy list, news pane, status bar with the away button and connected time, tray
// icon and main menu. Every menu item carries its command name as object name, so the rest of
// the program (and the tests) reach it by that name.
class ChatMain : public QMainWindow, public RoomCommandHost {
    Q_OBJECT
  public:
    explicit ChatMain(ClientSession& session, QWidget* parent = nullptr);
    ~ChatMain() override;

    QAction* action(const QString& name) const { return actions_.value(name); }
    QString connectedTimeText() const;
    QString paneText() const;
    QMenu* awayMenu() const { return awayMenu_; }
    ConnectionWindows& connectionWindows() { return *connectionWindows_; }

    // Shows the settings window at one of its pages.
    void openSettings(ChatConfig::Page page);
    // The room window, once the first channel has opened (null before).
    ChatRoom* roomWindow() const { return roomWindow_; }
    // Asks for a channel name and joins it ("Join Channel..").
    void promptJoinChannel();
    // Asks for a member's name and opens a conversation with them ("Send Private Message..").
    void promptPrivateMessage();
    // Asks for a member's name and asks the server where the member is ("Locate User..").
    void promptLocateUser();

    // What text commands typed in a channel may open.
    void openSettings() override { openSettings(ChatConfig::Page::General); }
    void openNicknameFormat() override;
    void openAbout() override { showAbout(); }
    void closeRoomWindow() override;
    void openChannelDirectory() override;
    void openChannelCreation() override;
    void openInviteSender() override;
    ChannelWindows& channelWindows() { return *channelWindows_; }
    void openProfileEditor() override;
    ContactWindows& contactWindows() { return *contactWindows_; }
    void lookUpWeather(const QString& channel, const QString& postalCode) override;
    void lookUpRadio(const QString& channel) override;
    void openNews() override;
    // The radio player, with `station` in its address box when one is given.
    void openRadio(const QString& station = QString());
    // The help window at the page of `topic` (empty: the first page).
    void openHelp(const QString& topic = QString());
    // The server offered a newer client and the member wants it: downloaded and checked when the
    // notice named a checksum, else its page opens in the browser.
    void openUpdate(const QString& url, const QString& version, const QString& sha256);
    ChatUpdate* updateWindow() const { return updateWindow_; }

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    void buildMenus();
    void buildCentralArea();
    void buildStatusBar();
    void buildTrayIcon();
    void applyViewSettings();
    void rebuildAwayMenu();
    void onAwayMenuItem(const QString& key);
    void openNewAway();
    void showAbout();
    void setOnlineLook(bool online);
    // The padlock and its tooltip from the connection's encryption.
    void showEncryption();
    void followServerSession();
    void followMailbox();
    QAction* addCommand(QMenu* menu, const QString& name, const QString& caption, bool available);

    ClientSession& session_;
    std::unique_ptr<Prompter> prompter_;
    QHash<QString, QAction*> actions_;
    QTreeWidget* buddyTree_ = nullptr;
    QLabel* buddyCaption_ = nullptr;
    QTextBrowser* pane_ = nullptr;
    QToolBar* toolBar_ = nullptr;
    QToolButton* statusButton_ = nullptr;
    QMenu* awayMenu_ = nullptr;
    QLabel* onlineLabel_ = nullptr;
    QLabel* scoreLabel_ = nullptr;
    QLabel* padlockLabel_ = nullptr;
    QLabel* timeLabel_ = nullptr;
    QToolButton* mailButton_ = nullptr;
    QSystemTrayIcon* tray_ = nullptr;
    ConnectionWindows* connectionWindows_ = nullptr;
    ChannelWindows* channelWindows_ = nullptr;
    ContactWindows* contactWindows_ = nullptr;
    GameWindows* gameWindows_ = nullptr;
    ChatConfig* settingsWindow_ = nullptr;
    ChatRoom* roomWindow_ = nullptr;
    ChatPM* pmWindow_ = nullptr;
    DesktopNotices* notices_ = nullptr;
    WindowKeeper* windowKeeper_ = nullptr;
    cMagneticWnd* magnet_ = nullptr;
    ChatNews* newsWindow_ = nullptr;
    ChatRadio* radioWindow_ = nullptr;
    ChatUpdate* updateWindow_ = nullptr;
    ChatHelp* helpWindow_ = nullptr;
};

}  // namespace tavren
