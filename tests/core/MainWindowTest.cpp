#include <gtest/gtest.h>

#include <QAction>
#include <QCoreApplication>
#include <QLabel>
#include <QMenu>
#include <QTemporaryDir>
#include <QToolBar>

#include "core/ClientSession.h"
#include "core/Startup.h"
#include "core/ui/ChatMain.h"
#include "support/ScriptedPrompter.h"

namespace tavren {
namespace {

class MainWindowTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(root.isValid());
        qputenv("TAVREN_HOME", root.path().toUtf8());
        session = std::make_unique<ClientSession>(root.path(), nullptr, prompter);
        window = std::make_unique<ChatMain>(*session);
        Startup startup(root.path(), prompter);
        startup.loadUserData(*session);
    }
    QTemporaryDir root;
    test::ScriptedPrompter prompter;
    std::unique_ptr<ClientSession> session;
    std::unique_ptr<ChatMain> window;
};

TEST_F(MainWindowTest, StartsOfflineWithEmptyNewsPaneAndZeroTime) {
    window->show();
    EXPECT_TRUE(window->paneText().isEmpty());
    EXPECT_EQ(window->connectedTimeText(), QStringLiteral("00:00:00:00"));
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Tavren Chat Offline (?\?)"));

    // Every command is present; those that need the server wait for it.
    const QStringList commands = {
        "abouttavren",    "changepassword", "config",       "console",        "currentnick",
        "Editawaym",      "editbuddys",     "editprofile",  "exittavren",     "findchat",
        "formatnickname", "helptopics",     "inviteuser",   "joinroom",       "jointable",
        "locateuser",     "loginoff",       "membersearch", "mnu_gameinvite", "mnuaddbuddy",
        "mnucreatetable", "mnueditemail",   "mnufindtable", "mnusetupb",      "mnuToolbar",
        "newaway",        "nickswitch",     "playsounds",   "readmessages",   "sendmsg",
        "showads"};
    for (const QString& name : commands) {
        ASSERT_NE(window->action(name), nullptr) << name.toStdString();
    }
    for (const char* available : {"config", "exittavren", "abouttavren", "Editawaym", "mnuToolbar",
                                  "showads", "playsounds"}) {
        EXPECT_TRUE(window->action(QString::fromLatin1(available))->isEnabled()) << available;
    }
    EXPECT_FALSE(window->action(QStringLiteral("joinroom"))->isEnabled());
}

TEST_F(MainWindowTest, ToolBarButtonsAllFitTheDefaultWidthAndSayWhatTheyDo) {
    window->show();
    QCoreApplication::processEvents();
    auto* toolBar = window->findChild<QToolBar*>(QStringLiteral("toolbar"));
    ASSERT_NE(toolBar, nullptr);
    QStringList shown;
    for (QAction* action : toolBar->actions()) {
        QWidget* button = toolBar->widgetForAction(action);
        ASSERT_NE(button, nullptr) << action->objectName().toStdString();
        // A button that does not fit is hidden behind the tool bar's overflow arrow.
        EXPECT_TRUE(button->isVisible()) << action->objectName().toStdString();
        EXPECT_FALSE(action->icon().isNull()) << action->objectName().toStdString();
        EXPECT_FALSE(action->toolTip().isEmpty()) << action->objectName().toStdString();
        shown << action->objectName();
    }
    EXPECT_EQ(shown, (QStringList{"loginoff", "joinroom", "sendmsg", "config"}));
    for (const char* label : {"scoreLabel", "connectedTime", "onlineLabel"}) {
        auto* found = window->findChild<QLabel*>(QString::fromLatin1(label));
        ASSERT_NE(found, nullptr) << label;
        EXPECT_FALSE(found->toolTip().isEmpty()) << label;
    }
}

TEST_F(MainWindowTest, AwayMenuListsTheSavedMessages) {
    QStringList keys;
    QStringList captions;
    for (QAction* action : window->awayMenu()->actions()) {
        keys << action->objectName();
        captions << action->text();
    }
    EXPECT_EQ(keys, (QStringList{"new", "spc1", "awy0", "awy1", "spc2", "edt"}));
    EXPECT_EQ(captions[2], QStringLiteral("&Default Away Message.."));

    session->awayMessages().add({QStringLiteral("Lunch"), QStringLiteral("Back at one.")});
    EXPECT_EQ(window->awayMenu()->actions().at(4)->objectName(), QStringLiteral("awy2"));
}

TEST_F(MainWindowTest, ViewSwitchesPersistAtOnce) {
    QAction* ads = window->action(QStringLiteral("showads"));
    ASSERT_TRUE(ads->isChecked());
    ads->trigger();
    EXPECT_FALSE(session->settings().showAds());

    QAction* sounds = window->action(QStringLiteral("playsounds"));
    sounds->trigger();
    EXPECT_FALSE(session->settings().values().playSounds);

    // A new session on the same store sees both switches.
    ClientSession reloaded(root.path(), nullptr, prompter);
    reloaded.settings().load();
    EXPECT_FALSE(reloaded.settings().showAds());
    EXPECT_FALSE(reloaded.settings().values().playSounds);
}

TEST_F(MainWindowTest, AwayEditorCommandsOpenTheSettingsAtTheAwayList) {
    window->action(QStringLiteral("Editawaym"))->trigger();
    auto* config = window->findChild<ChatConfig*>();
    ASSERT_NE(config, nullptr);
    EXPECT_TRUE(config->isVisible());
    EXPECT_EQ(config->currentPage(), ChatConfig::Page::AwayMessages);

    // The status button's editor entry reaches the same window, not a second one.
    config->showPage(ChatConfig::Page::General);
    window->awayMenu()->actions().constLast()->trigger();
    EXPECT_EQ(window->findChildren<ChatConfig*>().size(), 1);
    EXPECT_EQ(config->currentPage(), ChatConfig::Page::AwayMessages);
}

}  // namespace
}  // namespace tavren
