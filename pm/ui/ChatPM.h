#pragma once

#include <QHash>
#include <QMainWindow>
#include <QPointer>

class QAction;
class QFileDialog;
class QMenu;
class QPushButton;
class QStackedWidget;
class QTabBar;

namespace tavren {

class ChatCaptureRectangle;
class ClientSession;
class PmTab;
class PrivateChats;
class SmileyPicker;

// The one window that holds every private conversation, one tab each (caption: the other
// member; tag: the conversation's index, through which its pane and entry box are found). It
// shows what the private chats hold and hands the member's actions back to them.
class ChatPM : public QMainWindow {
    Q_OBJECT
  public:
    explicit ChatPM(ClientSession& session, QWidget* parent = nullptr);
    ~ChatPM() override;

    QTabBar& tabs() { return *tabs_; }
    // The controls of the conversation at `position` (tab order), or null.
    PmTab* tab(int position) const;
    QAction* action(const QString& name) const { return actions_.value(name); }
    QPushButton* button(const QString& name) const { return buttons_.value(name); }
    // Sends what the selected conversation's entry box holds, as Enter does.
    void sendInput();
    // The tab strip's menu for the conversation at `position`, filled as it would pop up.
    void fillTabMenu(QMenu& menu, int position);
    // The pane's menu for the link `link` (may be empty), filled as it would pop up.
    void fillPaneMenu(QMenu& menu, const QUrl& link);

    // "Send File..", "Send Picture..": the open dialog for the selected conversation (shown
    // without waiting; the chosen file goes to the conversation it was opened for).
    QFileDialog* chooseFile(bool pictures);
    QFileDialog* fileDialog() const;
    // "Send Screen Capture..": freezes the screen under the capture window, whose rectangle
    // goes to the selected conversation as a picture.
    ChatCaptureRectangle* captureScreen();
    ChatCaptureRectangle* captureWindow() const;
    // The open dialog's filters, pictures first or all files only.
    static QStringList fileFilters(bool pictures);

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    void buildMenus();
    QWidget* buildButtons();
    QAction* addCommand(QMenu* menu, const QString& name, const QString& caption);
    QPushButton* addButton(const QString& name, const QString& caption, const QString& tip,
                           const char* actionName);
    void onOpened(int position, bool byMember);
    void onClosed(int position, int index);
    void onSelectionChanged(int position);
    void onUnreadChanged(int position);
    void onTabClicked(int position);
    void showTabMenu(const QPoint& at);
    void showPaneMenu(PmTab* page, const QPoint& panePos);
    void inviteSelected();
    void copySelected();
    void printSelected();
    void openSmileys(QWidget* anchor);
    void updateCommands();
    void showDirectLink(int index);
    void pressTransferButton();
    void saveShownFileAs(const QString& path);
    PmTab* selectedTab() const;

    ClientSession& session_;
    PrivateChats& chats_;
    QHash<QString, QAction*> actions_;
    QHash<QString, QPushButton*> buttons_;
    QHash<int, PmTab*> tabsByIndex_;
    QTabBar* tabs_ = nullptr;
    QStackedWidget* stack_ = nullptr;
    SmileyPicker* smileys_ = nullptr;
    bool syncingTabs_ = false;
    QPointer<QFileDialog> fileDialog_;
    QPointer<ChatCaptureRectangle> captureWindow_;
};

}  // namespace tavren
