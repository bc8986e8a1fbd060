#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "core/AwayMenuModel.h"
#include "core/ClientSession.h"
#include "core/ConnectedClock.h"
#include "core/SingleInstanceGuard.h"
#include "core/Startup.h"
#include "support/ScriptedPrompter.h"

namespace tavren {
namespace {

class StartupTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(root.isValid());
        // The settings store follows TAVREN_HOME; point it at this test's own folder.
        qputenv("TAVREN_HOME", root.path().toUtf8());
    }
    QTemporaryDir root;
    test::ScriptedPrompter prompter;
};

TEST_F(StartupTest, FreshDataRootGetsFoldersAssetsAndDefaultAwayMessages) {
    Startup startup(root.path(), prompter);
    ASSERT_TRUE(startup.claimProcess());
    EXPECT_TRUE(prompter.asked.empty());

    ClientSession session(root.path(), nullptr, prompter);
    EXPECT_EQ(startup.loadUserData(session), QString());

    const QDir dir(root.path());
    EXPECT_TRUE(dir.exists(QStringLiteral("smiles")));
    EXPECT_TRUE(dir.exists(QStringLiteral("downloaded")));
    EXPECT_TRUE(dir.exists(QStringLiteral("smiles/101.gif")));
    EXPECT_TRUE(dir.exists(QStringLiteral("smiles/153.gif")));
    EXPECT_TRUE(dir.exists(QStringLiteral("sounds/buddy_online.wav")));
    EXPECT_TRUE(dir.exists(QStringLiteral("sounds/them_chat.wav")));

    const auto& away = session.awayMessages().entries();
    ASSERT_EQ(away.size(), 2);
    EXPECT_EQ(away[0].name, QStringLiteral("Default Away Message.."));
    EXPECT_EQ(away[0].text, QStringLiteral("I'm away from they computer."));
    EXPECT_EQ(away[1].name, QStringLiteral("Playing a Game.."));
    EXPECT_EQ(away[1].text, QStringLiteral("I'm playing a game right now."));
    EXPECT_TRUE(session.performList().commands().isEmpty());
    EXPECT_TRUE(session.ignoreList().names().isEmpty());
    // A fresh store reads as the defaults.
    EXPECT_EQ(session.settings().values(), session.settings().defaults());
}

TEST_F(StartupTest, ExistingDataFilesAreReadAtStart) {
    QDir(root.path()).mkpath(QStringLiteral("."));
    QFile ignore(QDir(root.path()).filePath(QStringLiteral("ignore.dat")));
    ASSERT_TRUE(ignore.open(QIODevice::WriteOnly));
    ignore.write("'spammer\n'  other  \n'\n");
    ignore.close();
    QFile perform(QDir(root.path()).filePath(QStringLiteral("perform.dat")));
    ASSERT_TRUE(perform.open(QIODevice::WriteOnly));
    perform.write("'/join Lobby\n'/JOIN lobby  \n'not a command\n");
    perform.close();

    Startup startup(root.path(), prompter);
    ASSERT_TRUE(startup.claimProcess());
    ClientSession session(root.path(), nullptr, prompter);
    startup.loadUserData(session);
    EXPECT_EQ(session.ignoreList().names(), (QStringList{"spammer", "other"}));
    EXPECT_EQ(session.performList().commands(), QStringList{"/join Lobby"});
}

TEST_F(StartupTest, SecondCopyAsksAndEndsOnNo) {
    SingleInstanceGuard firstCopy(root.path());
    ASSERT_TRUE(firstCopy.acquire());

    Startup declined(root.path(), prompter);
    prompter.answers.push_back(Prompter::Answer::No);
    EXPECT_FALSE(declined.claimProcess());
    ASSERT_EQ(prompter.asked.size(), 1u);
    EXPECT_EQ(prompter.asked[0].kind, QStringLiteral("yesno"));
    EXPECT_EQ(prompter.asked[0].title, QStringLiteral("Tavren Client Already running!"));
    EXPECT_EQ(prompter.asked[0].text,
              QStringLiteral("Would you like to open another Tavren Chat Client?\n"
                             "Tavren Chat Client is already running..."));
    // Declining touched nothing: no folders were made.
    EXPECT_FALSE(QDir(root.path()).exists(QStringLiteral("smiles")));

    Startup accepted(root.path(), prompter);
    prompter.answers.push_back(Prompter::Answer::Yes);
    EXPECT_TRUE(accepted.claimProcess());
}

TEST_F(StartupTest, NewAwayMessageNeedsBothFieldsAndIsKeptOnlyWhenAsked) {
    ClientSession session(root.path(), nullptr, prompter);
    Startup(root.path(), prompter).loadUserData(session);
    AwayStatus& status = session.awayStatus();
    AwayMessages& saved = session.awayMessages();

    EXPECT_FALSE(
        status.goAwayWithNew(QStringLiteral(" "), QStringLiteral("text"), true, saved, prompter));
    EXPECT_FALSE(status.goAwayWithNew(QStringLiteral("Name"), QString(), true, saved, prompter));
    ASSERT_EQ(prompter.asked.size(), 2u);
    EXPECT_EQ(
        prompter.asked[0].text,
        QStringLiteral("Please Enter a Name and check that the new away message is there..."));
    EXPECT_EQ(prompter.asked[0].title, QStringLiteral("Away Message..."));
    EXPECT_EQ(saved.entries().size(), 2);

    EXPECT_TRUE(status.goAwayWithNew(QStringLiteral("Once"), QStringLiteral("not kept"), false,
                                     saved, prompter));
    EXPECT_EQ(saved.entries().size(), 2);
    // A kept message is one line of the file, whatever was pasted into it.
    EXPECT_TRUE(status.goAwayWithNew(QStringLiteral("Lunch\x01"),
                                     QStringLiteral("Out\r\nback at one"), true, saved, prompter));
    AwayMessages reread(saved.filePath());
    reread.load();
    ASSERT_EQ(reread.entries().size(), 3);
    EXPECT_EQ(reread.entries()[2].name, QStringLiteral("Lunch"));
    EXPECT_EQ(reread.entries()[2].text, QStringLiteral("Out  back at one"));
}

TEST(AwayMenuModelTest, ItemsFollowTheAwayState) {
    const auto back = AwayMenuModel::build({"Lunch", "Game"}, false);
    QStringList keys;
    for (const auto& item : back) {
        keys << item.key;
    }
    EXPECT_EQ(keys, (QStringList{"new", "spc1", "awy0", "awy1", "spc2", "edt"}));
    EXPECT_EQ(back[0].caption, QStringLiteral("&New Away Message.."));
    EXPECT_EQ(back[2].caption, QStringLiteral("&Lunch"));
    EXPECT_TRUE(back[1].isSeparator());
    EXPECT_EQ(back[5].caption, QStringLiteral("&Edit Away Messages.."));

    const auto away = AwayMenuModel::build({"Lunch"}, true);
    ASSERT_EQ(away.size(), 3u);
    EXPECT_EQ(away[0].caption, QStringLiteral("Set Yourself &Back.."));
    EXPECT_EQ(away[1].key, QStringLiteral("spc2"));
    EXPECT_EQ(away[2].key, QStringLiteral("edt"));

    EXPECT_EQ(AwayMenuModel::awayIndex(QStringLiteral("awy12")), 12);
    EXPECT_EQ(AwayMenuModel::awayIndex(QStringLiteral("awy")), -1);
    EXPECT_EQ(AwayMenuModel::awayIndex(QStringLiteral("edt")), -1);
}

TEST(ConnectedClockTest, CountsDaysHoursMinutesSeconds) {
    EXPECT_EQ(ConnectedClock::format(0), QStringLiteral("00:00:00:00"));
    EXPECT_EQ(ConnectedClock::format(59), QStringLiteral("00:00:00:59"));
    EXPECT_EQ(ConnectedClock::format(86400 + 3600 + 60 + 1), QStringLiteral("01:01:01:01"));
    EXPECT_EQ(ConnectedClock::format(100 * 86400), QStringLiteral("100:00:00:00"));

    ConnectedClock clock;
    clock.tick();
    clock.tick();
    EXPECT_EQ(clock.text(), QStringLiteral("00:00:00:02"));
    clock.start();  // a new link starts from zero
    EXPECT_EQ(clock.text(), QStringLiteral("00:00:00:00"));
    EXPECT_TRUE(clock.running());
}

}  // namespace
}  // namespace tavren
