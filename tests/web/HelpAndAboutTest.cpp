// The help pages cover every window and text command and can be searched; the About window
// names the version, our own assets and the libraries' licences.
#include <gtest/gtest.h>

#include <QAction>
#include <QMenuBar>
#include <QTemporaryDir>
#include <QTextBrowser>

#include "core/ClientSession.h"
#include "core/HelpPages.h"
#include "core/ui/AboutDialog.h"
#include "core/ui/ChatHelp.h"
#include "core/ui/ChatMain.h"
#include "support/ScriptedPrompter.h"

namespace tavren {
namespace {

QString allHelpText() {
    QString text;
    const HelpPages help;
    for (const HelpPages::Page& page : help.pages()) {
        text += page.text + QLatin1Char('\n');
    }
    return text;
}

TEST(HelpPagesTest, EveryTextCommandAndMenuItemIsExplained) {
    const HelpPages help;
    ASSERT_GE(help.pages().size(), 10);
    EXPECT_EQ(help.pages()[0].title, QStringLiteral("Getting started"));
    const QString text = allHelpText();
    for (const char* command : {"/join", "/invite", "/weather", "/radio", "/editprofile", "/news",
                                "/config", "/findchan", "/format", "/about", "/clear", "/exit",
                                "/leave", "/help", "/away", "/back", "/vote", "/kick"}) {
        EXPECT_TRUE(text.contains(QString::fromLatin1(command))) << command;
    }
    // Every item of the main window's menus, by its caption.
    QTemporaryDir dir;
    test::ScriptedPrompter prompter;
    ClientSession session(dir.path(), dir.filePath(QStringLiteral("settings.ini")),
                          ConnectionOptions::deployment(), prompter);
    ChatMain main(session);
    for (QAction* menu : main.menuBar()->actions()) {
        for (QAction* item : menu->menu()->actions()) {
            if (item->isSeparator()) {
                continue;
            }
            QString caption = item->text().remove(QLatin1Char('&'));
            caption = caption.section(QLatin1String(" ("), 0, 0);  // "Read Messages (0).."
            while (caption.endsWith(QLatin1Char('.'))) {
                caption.chop(1);
            }
            EXPECT_TRUE(text.contains(caption, Qt::CaseInsensitive))
                << item->objectName().toStdString() << ": " << caption.toStdString();
        }
    }
}

TEST(HelpPagesTest, SearchFindsPagesHoldingEveryWordBestFirst) {
    const HelpPages help;
    const QList<int> weather = help.search(QStringLiteral("WEATHER postal"));
    ASSERT_FALSE(weather.isEmpty());
    EXPECT_EQ(help.pages()[weather[0]].name, QStringLiteral("09-web"));
    EXPECT_TRUE(help.search(QStringLiteral("weather zzzqqq")).isEmpty());
    EXPECT_EQ(help.search(QString()).size(), help.pages().size());
    EXPECT_EQ(help.find(QStringLiteral("text commands")), help.find("04-text-commands"));
    EXPECT_EQ(help.find(QStringLiteral("no such page")), -1);
}

TEST(HelpWindowTest, TheWindowListsWhatTheSearchFindsAndShowsIt) {
    QTemporaryDir dir;
    test::ScriptedPrompter prompter;
    ClientSession session(dir.path(), dir.filePath(QStringLiteral("settings.ini")),
                          ConnectionOptions::deployment(), prompter);
    ChatMain main(session);
    QAction* topics = main.action(QStringLiteral("helptopics"));
    ASSERT_TRUE(topics->isEnabled());
    topics->trigger();
    auto* help = main.findChild<ChatHelp*>(QStringLiteral("ChatHelp"));
    ASSERT_NE(help, nullptr);
    EXPECT_TRUE(help->isVisible());
    EXPECT_TRUE(help->pageText().startsWith(QStringLiteral("Getting started")));
    help->search(QStringLiteral("radio"));
    ASSERT_FALSE(help->listedTitles().isEmpty());
    EXPECT_LT(help->listedTitles().size(), HelpPages().pages().size());
    EXPECT_TRUE(help->pageText().contains(QStringLiteral("radio"), Qt::CaseInsensitive));
    help->search(QStringLiteral("zzzqqq"));
    EXPECT_TRUE(help->listedTitles().isEmpty());
    EXPECT_TRUE(help->pageText().contains(QStringLiteral("No page mentions")));
    main.openHelp(QStringLiteral("Text commands"));
    EXPECT_TRUE(help->pageText().startsWith(QStringLiteral("Text commands")));
}

TEST(AboutWindowTest, NamesTheVersionOurOwnAssetsAndTheLicences) {
    AboutDialog about;
    const QString credits =
        about.findChild<QTextBrowser*>(QStringLiteral("credits"))->toPlainText();
    for (const char* needed : {"smileys", "sounds", "Qt", "LGPL", "Asio", "SQLite", "libsodium"}) {
        EXPECT_TRUE(credits.contains(QString::fromLatin1(needed))) << needed;
    }
    EXPECT_EQ(AboutDialog::versionText(), QStringLiteral("1.0.0"));
}

}  // namespace
}  // namespace tavren
